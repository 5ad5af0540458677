// The front door is cmpihost/Host.h; this header is internal.
// The broker's four function tables and the upcalls behind them.
#ifndef CMPIHOST_BROKER_BROKER_H_
#define CMPIHOST_BROKER_BROKER_H_

#include <cmpidt.h>
#include <cmpift.h>

namespace cmpihost {

extern const CMPIBrokerFT kBrokerFT;
extern const CMPIBrokerEncFT kBrokerEncFT;
extern const CMPIBrokerExtFT kBrokerExtFT;
extern const CMPIBrokerMemFT kBrokerMemFT;

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_BROKER_H_
