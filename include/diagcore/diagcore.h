// Everything a diagnostic plug-in uses, in one include.
#ifndef DIAGCORE_DIAGCORE_H_
#define DIAGCORE_DIAGCORE_H_

#include "diagcore/AvailServiceFactory.h"
#include "diagcore/AvailableDiagnosticService.h"
#include "diagcore/CMPIUtil.h"
#include "diagcore/CimNames.h"
#include "diagcore/DiagProvider.h"
#include "diagcore/DiagService.h"
#include "diagcore/DiagServiceCapabilitiesData.h"
#include "diagcore/DiagServiceProviderCim.h"
#include "diagcore/DiagServiceProviderCommon.h"
#include "diagcore/DiagServiceSettingData.h"
#include "diagcore/DiagUser.h"
#include "diagcore/DiagnosticRecord.h"
#include "diagcore/InstanceBuilder.h"
#include "diagcore/InstanceImpl.h"
#include "diagcore/InstanceRegistry.h"
#include "diagcore/ServiceFactory.h"
#include "diagcore/UseOfLog.h"

#endif  // DIAGCORE_DIAGCORE_H_
