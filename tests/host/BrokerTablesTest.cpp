// The broker's tables: every entry present (so nothing a provider calls is a
// null pointer), null and foreign handles refused without a crash, results,
// logging, messages and the operating-system services. Args and contexts
// are exercised by the dispatch tests' method calls and enumerations.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

class BrokerTablesTest : public HostTest {};

// Every pointer-sized slot from `first` to the end of the table is filled.
template <typename Table>
void ExpectAllSlotsFilled(const Table* table, std::size_t first, const char* name) {
  ASSERT_NE(table, nullptr) << name;
  const auto* bytes = reinterpret_cast<const unsigned char*>(table);
  for (std::size_t offset = first; offset + sizeof(void*) <= sizeof(Table);
       offset += sizeof(void*)) {
    void* slot = nullptr;
    std::memcpy(&slot, bytes + offset, sizeof slot);
    EXPECT_NE(slot, nullptr) << name << " slot at offset " << offset;
  }
}
#define EXPECT_FILLED(table, Type, first) ExpectAllSlotsFilled(table, offsetof(Type, first), #Type)

TEST_F(BrokerTablesTest, EveryEntryOfEveryTableIsPresent) {
  EXPECT_FILLED(broker_->bft, CMPIBrokerFT, prepareAttachThread);
  EXPECT_FILLED(broker_->eft, CMPIBrokerEncFT, newInstance);
  EXPECT_FILLED(broker_->xft, CMPIBrokerExtFT, resolveFileName);
  EXPECT_FILLED(broker_->mft, CMPIBrokerMemFT, mark);
  EXPECT_EQ(broker_->bft->brokerVersion, 200u);
  EXPECT_STREQ(broker_->bft->brokerName, "cmpihost");

  const CMPIBrokerEncFT& eft = *broker_->eft;
  CMPIInstance* keyed = instance("Test_Keyed");
  EXPECT_FILLED(keyed->ft, CMPIInstanceFT, release);
  EXPECT_FILLED(keyed->ft->getObjectPath(keyed, nullptr)->ft, CMPIObjectPathFT, release);
  EXPECT_FILLED(string("x")->ft, CMPIStringFT, release);
  EXPECT_FILLED(eft.newArray(broker_, 1, CMPI_uint8, nullptr)->ft, CMPIArrayFT, release);
  EXPECT_FILLED(eft.newDateTime(broker_, nullptr)->ft, CMPIDateTimeFT, release);
  EXPECT_FILLED(eft.newArgs(broker_, nullptr)->ft, CMPIArgsFT, release);
  EXPECT_FILLED(scope_->context()->ft, CMPIContextFT, release);
  EXPECT_FILLED(scope_->newResult()->ft, CMPIResultFT, release);
  EXPECT_FILLED(eft.newCMPIError(broker_, "o", "id", "m", ErrorSevLow, ErrorProbCauseUnknown,
                                 CMPI_RC_ERR_FAILED, nullptr)
                    ->ft,
                CMPIErrorFT, release);
  EXPECT_FILLED(eft.newSelectExp(broker_, "select * from X", "WQL", nullptr, nullptr)->ft,
                CMPISelectExpFT, release);
  EXPECT_FILLED(
      broker_->bft->enumerateInstanceNames(broker_, scope_->context(), path("Test_Static"), nullptr)
          ->ft,
      CMPIEnumerationFT, release);
}

TEST_F(BrokerTablesTest, EveryReleaseRefusesANullHandleSayingWhatItWanted) {
  const CMPIBrokerEncFT& eft = *broker_->eft;
  const struct {
    const char* type;
    CMPIStatus status;
    const char* message;
  } cases[] = {
      {"instance", instance("Test_Keyed")->ft->release(nullptr),
       "not an instance of this broker (null or foreign handle)"},
      {"object path", path("Test_Keyed")->ft->release(nullptr),
       "not an object path of this broker (null or foreign handle)"},
      {"array", eft.newArray(broker_, 1, CMPI_uint8, nullptr)->ft->release(nullptr),
       "not an object of this broker (null or foreign handle)"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.status.rc, CMPI_RC_ERR_INVALID_HANDLE) << c.type;
    EXPECT_EQ(Text(c.status.msg), c.message) << c.type;
  }
}

TEST_F(BrokerTablesTest, NullAndForeignHandlesAreRefusedNotFollowed) {
  CMPIStatus rc;
  EXPECT_EQ(broker_->eft->newString(nullptr, "x", &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(broker_->eft->newInstance(broker_, nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(broker_->eft->newString(broker_, nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);

  const CMPIStringFT* stringFT = string("x")->ft;
  EXPECT_EQ(stringFT->getCharPtr(nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);

  // A look-alike made elsewhere: right layout, someone else's table.
  CMPIStringFT otherTable{};
  CMPIString foreign{const_cast<char*>("x"), &otherTable};
  EXPECT_EQ(stringFT->clone(&foreign, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  CMPIInstance* keyed = instance("Test_Keyed");
  CMPIValue value;
  value.string = &foreign;
  EXPECT_EQ(keyed->ft->setProperty(keyed, "Name", &value, CMPI_string).rc,
            CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(keyed->ft->getProperty(nullptr, "Name", &rc).type, CMPI_null);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(keyed->ft->getObjectPath(nullptr, nullptr), nullptr);
  EXPECT_EQ(scope_->newResult()->ft->returnInstance(scope_->newResult(), nullptr).rc,
            CMPI_RC_ERR_INVALID_PARAMETER);
  broker_->mft->freeString(broker_, nullptr);
  broker_->mft->cmpiFree(broker_, nullptr);
}

TEST_F(BrokerTablesTest, AResultRecordsEveryCallInOrderAsCopies) {
  CMPIResult* result = scope_->newResult();
  CMPIInstance* keyed = instance("Test_Keyed");
  setString(keyed, "Name", "name");
  result->ft->returnInstance(result, keyed);
  result->ft->returnObjectPath(result, keyed->ft->getObjectPath(keyed, nullptr));
  CMPIValue value;
  value.string = string("data");
  result->ft->returnData(result, &value, CMPI_string);
  value.string->ft->release(value.string);
  keyed->ft->release(keyed);
  CMPIError* error = broker_->eft->newCMPIError(broker_, "owner", "E1", "went wrong", ErrorSevHigh,
                                                ErrorProbCauseUnknown, CMPI_RC_ERR_FAILED, nullptr);
  result->ft->returnError(result, error);
  result->ft->returnDone(result);
  result->ft->returnDone(result);

  const Reply reply = scope_->recorded(result);
  ASSERT_EQ(reply.events.size(), 6u);
  EXPECT_EQ(reply.events[0].kind, ResultEvent::Kind::kInstance);
  EXPECT_EQ(reply.events[0].instance.find("name")->text, "name");
  EXPECT_EQ(reply.events[0].instance.path, R"(root/cimv2:Test_Keyed.Name="name")");
  EXPECT_EQ(reply.events[1].kind, ResultEvent::Kind::kObjectPath);
  EXPECT_EQ(reply.events[1].path, R"(root/cimv2:Test_Keyed.Name="name")");
  EXPECT_EQ(reply.events[2].kind, ResultEvent::Kind::kData);
  EXPECT_EQ(reply.events[2].data.text, "data");
  EXPECT_EQ(reply.events[3].kind, ResultEvent::Kind::kError);
  EXPECT_EQ(reply.events[3].error, "went wrong");
  EXPECT_EQ(reply.doneCount(), 2u);  // recorded as given: tests can see a double returnDone
}

TEST_F(BrokerTablesTest, LogMessagesAreCapturedInOrderWithinTheBound) {
  std::vector<LogRecord> sunk;
  host_.onLog([&](const LogRecord& record) { sunk.push_back(record); });
  broker_->eft->logMessage(broker_, CMPI_SEV_INFO, "dropped", "capture is off", nullptr);
  EXPECT_TRUE(host_.logRecords().empty());

  host_.captureLog(true, 2);
  broker_->eft->logMessage(broker_, CMPI_SEV_ERROR, "id1", "first", nullptr);
  broker_->eft->logMessage(broker_, CMPI_SEV_WARNING, "id2", nullptr, string("from a string"));
  broker_->eft->trace(broker_, CMPI_LEV_VERBOSE, "component", "traced", nullptr);
  const std::vector<LogRecord> records = host_.logRecords();
  ASSERT_EQ(records.size(), 2u);  // the oldest went
  EXPECT_EQ(records[0].kind, LogRecord::Kind::kLog);
  EXPECT_EQ(records[0].severity, CMPI_SEV_WARNING);
  EXPECT_EQ(records[0].id, "id2");
  EXPECT_EQ(records[0].text, "from a string");
  EXPECT_EQ(records[1].kind, LogRecord::Kind::kTrace);
  EXPECT_EQ(records[1].severity, CMPI_LEV_VERBOSE);
  EXPECT_EQ(records[1].id, "component");
  EXPECT_EQ(records[1].text, "traced");
  ASSERT_EQ(sunk.size(), 4u);  // the sink sees everything, capture or not
  EXPECT_EQ(sunk[0].text, "capture is off");

  host_.clearLog();
  EXPECT_TRUE(host_.logRecords().empty());
  host_.captureLog(false);
  broker_->eft->logMessage(broker_, CMPI_DEV_DEBUG, "diagcore", "after", nullptr);
  EXPECT_TRUE(host_.logRecords().empty());
}

TEST_F(BrokerTablesTest, MessagesAreTheDefaultWithArgumentsSubstituted) {
  CMPIStatus rc;
  CMPIString* message =
      broker_->eft->getMessage(broker_, "ID", "x=$0 y=$1 z=$2 $9", &rc, 3, CMPI_sint32, -4,
                               CMPI_chars, "hi", CMPI_uint64, static_cast<unsigned long long>(7));
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(message), "x=-4 y=hi z=7 $9");
  CMPIMsgFileHandle file = nullptr;
  EXPECT_EQ(broker_->eft->openMessageFile(broker_, "catalogue", &file).rc, CMPI_RC_OK);
  EXPECT_EQ(Text(broker_->eft->getMessage2(broker_, "ID", file, "plain", &rc, 0)), "plain");
  EXPECT_EQ(broker_->eft->closeMessageFile(broker_, file).rc, CMPI_RC_OK);
}

std::atomic<int> gOnceCount{0};
void CountOnce() {
  ++gOnceCount;
}
void* ThreadBody(void* argument) {
  return static_cast<char*>(argument) + 1;
}

TEST_F(BrokerTablesTest, OperatingSystemServicesWork) {
  const CMPIBrokerExtFT* ext = broker_->xft;
  char* file = ext->resolveFileName("provider");
  EXPECT_STREQ(file, "libprovider.so");
  free(file);

  char marker = 0;
  void* thread = ext->newThread(ThreadBody, &marker, 0);
  ASSERT_NE(thread, nullptr);
  void* returned = nullptr;
  EXPECT_EQ(ext->joinThread(thread, &returned), 0);
  EXPECT_EQ(returned, &marker + 1);
  EXPECT_EQ(ext->joinThread(nullptr, nullptr), EINVAL);

  void* mutex = ext->newMutex(0);
  ext->lockMutex(mutex);
  ext->lockMutex(mutex);  // recursive
  ext->unlockMutex(mutex);
  ext->unlockMutex(mutex);
  ext->destroyMutex(mutex);
  ext->lockMutex(nullptr);

  int once = 0;
  EXPECT_EQ(ext->threadOnce(&once, CountOnce), 0);
  EXPECT_EQ(ext->threadOnce(&once, CountOnce), 0);
  EXPECT_EQ(gOnceCount.load(), 1);
}

}  // namespace
}  // namespace cmpihost::testing
