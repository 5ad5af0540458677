// Every installed header compiles on its own include paths: the package
// ships no header that needs one it left out.
#include <cmpi/cmpidt.h>
#include <cmpi/cmpift.h>
#include <cmpi/cmpimacs.h>
#include <cmpi/cmpios.h>
#include <cmpi/cmpipl.h>
#include <cmpihost/CallScope.h>
#include <cmpihost/ClassRepository.h>
#include <cmpihost/Host.h>
#include <cmpihost/InstanceSnapshot.h>
#include <cmpihost/LogRecord.h>
#include <cmpihost/MofReader.h>
#include <cmpihost/ProviderRegistration.h>
#include <cmpihost/Reply.h>
#include <cmpihost/Value.h>
#include <diagcore/diagcore.h>
