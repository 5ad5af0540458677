#include "provider/ResultDelivery.h"

namespace NQENDRA20 {

void ReturnInstance(const CMPIResult* rslt, CMPIInstance* inst) {
  rslt->ft->returnInstance(rslt, inst);
}

void ReturnObjectPath(const CMPIResult* rslt, CMPIInstance* inst) {
  const CMPIObjectPath* path = inst->ft->getObjectPath(inst, nullptr);
  rslt->ft->returnObjectPath(rslt, path);
}

}  // namespace NQENDRA20
