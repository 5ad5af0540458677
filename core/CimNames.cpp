#include "diagcore/CimNames.h"

namespace NQENDRA20 {

const char* const cimNameSpace = "root/cimv2";
const char* const cimComputerSystemClass = "TORSK_ComputerSystem";
const char* const cimHostName = "localhost";

}  // namespace NQENDRA20
