// The broker's tables: every entry present, unsupported ones answering
// NOT_SUPPORTED, null and foreign handles refused without a crash, and the
// smaller objects (args, context, result, error, enumeration), logging,
// messages and the operating-system services.
#include <pthread.h>

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

TEST_F(BrokerTablesTest, EveryEntryOfEveryTableIsPresent) {
  ExpectAllSlotsFilled(broker_->bft, offsetof(CMPIBrokerFT, prepareAttachThread), "CMPIBrokerFT");
  ExpectAllSlotsFilled(broker_->eft, offsetof(CMPIBrokerEncFT, newInstance), "CMPIBrokerEncFT");
  ExpectAllSlotsFilled(broker_->xft, offsetof(CMPIBrokerExtFT, resolveFileName), "CMPIBrokerExtFT");
  ExpectAllSlotsFilled(broker_->mft, offsetof(CMPIBrokerMemFT, mark), "CMPIBrokerMemFT");
  EXPECT_EQ(broker_->bft->brokerVersion, 200u);
  EXPECT_STREQ(broker_->bft->brokerName, "cmpihost");

  CMPIInstance* keyed = instance("Test_Keyed");
  ExpectAllSlotsFilled(keyed->ft, offsetof(CMPIInstanceFT, release), "CMPIInstanceFT");
  CMPIObjectPath* op = keyed->ft->getObjectPath(keyed, nullptr);
  ExpectAllSlotsFilled(op->ft, offsetof(CMPIObjectPathFT, release), "CMPIObjectPathFT");
  CMPIString* text = string("x");
  ExpectAllSlotsFilled(text->ft, offsetof(CMPIStringFT, release), "CMPIStringFT");
  CMPIArray* array = broker_->eft->newArray(broker_, 1, CMPI_uint8, nullptr);
  ExpectAllSlotsFilled(array->ft, offsetof(CMPIArrayFT, release), "CMPIArrayFT");
  CMPIDateTime* now = broker_->eft->newDateTime(broker_, nullptr);
  ExpectAllSlotsFilled(now->ft, offsetof(CMPIDateTimeFT, release), "CMPIDateTimeFT");
  CMPIArgs* args = broker_->eft->newArgs(broker_, nullptr);
  ExpectAllSlotsFilled(args->ft, offsetof(CMPIArgsFT, release), "CMPIArgsFT");
  ExpectAllSlotsFilled(scope_->context()->ft, offsetof(CMPIContextFT, release), "CMPIContextFT");
  CMPIResult* result = scope_->newResult();
  ExpectAllSlotsFilled(result->ft, offsetof(CMPIResultFT, release), "CMPIResultFT");
  CMPIError* error = broker_->eft->newCMPIError(broker_, "o", "id", "m", ErrorSevLow,
                                                ErrorProbCauseUnknown, CMPI_RC_ERR_FAILED, nullptr);
  ExpectAllSlotsFilled(error->ft, offsetof(CMPIErrorFT, release), "CMPIErrorFT");
  CMPISelectExp* query =
      broker_->eft->newSelectExp(broker_, "select * from X", "WQL", nullptr, nullptr);
  ExpectAllSlotsFilled(query->ft, offsetof(CMPISelectExpFT, release), "CMPISelectExpFT");
  CMPIEnumeration* enumeration = broker_->bft->enumerateInstanceNames(broker_, scope_->context(),
                                                                      path("Test_Static"), nullptr);
  ExpectAllSlotsFilled(enumeration->ft, offsetof(CMPIEnumerationFT, release), "CMPIEnumerationFT");
}

TEST_F(BrokerTablesTest, UpcallsTheHostDoesNotOfferAnswerNotSupported) {
  const CMPIContext* context = scope_->context();
  CMPIObjectPath* op = path("Test_Keyed");
  CMPIInstance* keyed = instance("Test_Keyed");
  CMPIArgs* args = broker_->eft->newArgs(broker_, nullptr);
  CMPIStatus rc;
  const auto expectNotSupported = [&](const char* name) {
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_NOT_SUPPORTED) << name;
    rc.rc = CMPI_RC_OK;
  };
  EXPECT_EQ(broker_->bft->createInstance(broker_, context, op, keyed, &rc), nullptr);
  expectNotSupported("createInstance");
  rc = broker_->bft->modifyInstance(broker_, context, op, keyed, nullptr);
  expectNotSupported("modifyInstance");
  rc = broker_->bft->deleteInstance(broker_, context, op);
  expectNotSupported("deleteInstance");
  EXPECT_EQ(broker_->bft->execQuery(broker_, context, op, "q", "WQL", &rc), nullptr);
  expectNotSupported("execQuery");
  EXPECT_EQ(broker_->bft->associators(broker_, context, op, nullptr, nullptr, nullptr, nullptr,
                                      nullptr, &rc),
            nullptr);
  expectNotSupported("associators");
  EXPECT_EQ(
      broker_->bft->associatorNames(broker_, context, op, nullptr, nullptr, nullptr, nullptr, &rc),
      nullptr);
  expectNotSupported("associatorNames");
  EXPECT_EQ(broker_->bft->references(broker_, context, op, nullptr, nullptr, nullptr, &rc),
            nullptr);
  expectNotSupported("references");
  EXPECT_EQ(broker_->bft->referenceNames(broker_, context, op, nullptr, nullptr, &rc), nullptr);
  expectNotSupported("referenceNames");
  EXPECT_EQ(broker_->bft->invokeMethod(broker_, context, op, "Run", args, args, &rc).type,
            CMPI_null);
  expectNotSupported("invokeMethod");
  rc = broker_->bft->setProperty(broker_, context, op, "Note", nullptr, CMPI_string);
  expectNotSupported("setProperty");
  broker_->bft->getProperty(broker_, context, op, "Note", &rc);
  expectNotSupported("getProperty");
  rc = broker_->bft->deliverIndication(broker_, context, "root/cimv2", keyed);
  expectNotSupported("deliverIndication");
  CMPISelectExp* query = broker_->eft->newSelectExp(broker_, "q", "WQL", nullptr, nullptr);
  query->ft->evaluate(query, keyed, &rc);
  expectNotSupported("CMPISelectExp evaluate");
  EXPECT_EQ(query->ft->getDOC(query, &rc), nullptr);
  expectNotSupported("CMPISelectExp getDOC");
  // And with no status argument at all.
  EXPECT_EQ(broker_->bft->execQuery(broker_, context, op, "q", "WQL", nullptr), nullptr);
  EXPECT_EQ(broker_->bft->getProperty(broker_, context, op, "Note", nullptr).type, CMPI_null);
}

TEST_F(BrokerTablesTest, EveryReleaseRefusesANullHandleSayingWhatItWanted) {
  const CMPIBrokerEncFT& eft = *broker_->eft;
  CMPIInstance* keyed = instance("Test_Keyed");
  CMPIObjectPath* objectPath = path("Test_Keyed");
  CMPIArray* array = eft.newArray(broker_, 1, CMPI_uint8, nullptr);
  CMPIDateTime* dateTime = eft.newDateTime(broker_, nullptr);
  CMPIArgs* args = eft.newArgs(broker_, nullptr);
  CMPIError* error = eft.newCMPIError(broker_, "o", "m", "x", ErrorSevLow, ErrorProbCauseUnknown,
                                      CMPI_RC_ERR_FAILED, nullptr);
  CMPISelectExp* query = eft.newSelectExp(broker_, "q", "WQL", nullptr, nullptr);
  const struct {
    const char* type;
    CMPIStatus status;
    const char* message;
  } cases[] = {
      {"instance", keyed->ft->release(nullptr),
       "not an instance of this broker (null or foreign handle)"},
      {"object path", objectPath->ft->release(nullptr),
       "not an object path of this broker (null or foreign handle)"},
      {"array", array->ft->release(nullptr),
       "not an object of this broker (null or foreign handle)"},
      {"date-time", dateTime->ft->release(nullptr),
       "not an object of this broker (null or foreign handle)"},
      {"args", args->ft->release(nullptr), "not an object of this broker (null or foreign handle)"},
      {"error", error->ft->release(nullptr),
       "not an error of this broker (null or foreign handle)"},
      {"select expression", query->ft->release(nullptr), "not a select expression of this broker"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.status.rc, CMPI_RC_ERR_INVALID_HANDLE) << c.type;
    EXPECT_EQ(Text(c.status.msg), c.message) << c.type;
  }
  // Released objects leave the scope at once.
  const std::size_t live = scope_->liveObjects();
  EXPECT_EQ(array->ft->release(array).rc, CMPI_RC_OK);
  EXPECT_EQ(dateTime->ft->release(dateTime).rc, CMPI_RC_OK);
  EXPECT_EQ(scope_->liveObjects(), live - 2);
}

TEST_F(BrokerTablesTest, NullAndForeignHandlesAreRefusedNotFollowed) {
  CMPIStatus rc;
  EXPECT_EQ(broker_->eft->newString(nullptr, "x", &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(broker_->eft->newInstance(broker_, nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(broker_->eft->newString(broker_, nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);

  CMPIString* text = string("x");
  const CMPIStringFT* stringFT = text->ft;
  EXPECT_EQ(stringFT->getCharPtr(nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_HANDLE);
  EXPECT_EQ(stringFT->release(nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);

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

TEST_F(BrokerTablesTest, ArgsAndContextsKeepNamedTypedValues) {
  CMPIArgs* args = broker_->eft->newArgs(broker_, nullptr);
  CMPIValue value;
  value.uint16 = 12;
  ASSERT_EQ(args->ft->addArg(args, "Count", &value, CMPI_uint16).rc, CMPI_RC_OK);
  ASSERT_EQ(args->ft->addArg(args, "Text", reinterpret_cast<const CMPIValue*>("t"), CMPI_chars).rc,
            CMPI_RC_OK);
  EXPECT_EQ(args->ft->getArgCount(args, nullptr), 2u);
  CMPIStatus rc;
  EXPECT_EQ(args->ft->getArg(args, "count", &rc).value.uint16, 12);
  const CMPIData text = args->ft->getArg(args, "Text", &rc);
  EXPECT_EQ(text.type, CMPI_string);
  EXPECT_EQ(Text(text.value.string), "t");
  EXPECT_EQ(args->ft->getArg(args, "Missing", &rc).state, CMPI_nullValue | CMPI_notFound);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);

  const CMPIContext* context = scope_->context();
  EXPECT_EQ(Text(context->ft->getEntry(context, CMPIInitNameSpace, &rc).value.string),
            "root/cimv2");
  value.uint32 = CMPI_FLAG_DeepInheritance;
  ASSERT_EQ(context->ft->addEntry(context, CMPIInvocationFlags, &value, CMPI_uint32).rc,
            CMPI_RC_OK);
  EXPECT_EQ(context->ft->getEntry(context, CMPIInvocationFlags, &rc).value.uint32,
            static_cast<CMPIUint32>(CMPI_FLAG_DeepInheritance));
}

TEST_F(BrokerTablesTest, AResultRecordsEveryCallInOrderAsCopies) {
  CMPIResult* result = scope_->newResult();
  CMPIInstance* keyed = instance("Test_Keyed");
  CMPIValue value;
  value.string = string("name");
  keyed->ft->setProperty(keyed, "Name", &value, CMPI_string);
  result->ft->returnInstance(result, keyed);
  result->ft->returnObjectPath(result, keyed->ft->getObjectPath(keyed, nullptr));
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
  EXPECT_EQ(reply.events[0].instance.className, "Test_Keyed");
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

TEST_F(BrokerTablesTest, ErrorsKeepEveryField) {
  CMPIStatus rc;
  CMPIError* error = broker_->eft->newCMPIError(broker_, "owner", "E1", "text", ErrorSevMedium,
                                                Timeout, CMPI_RC_ERR_NOT_FOUND, &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(Text(error->ft->getOwningEntity(error, nullptr)), "owner");
  EXPECT_EQ(Text(error->ft->getMessageID(error, nullptr)), "E1");
  EXPECT_EQ(error->ft->getPerceivedSeverity(error, nullptr), ErrorSevMedium);
  EXPECT_EQ(error->ft->getProbableCause(error, nullptr), Timeout);
  EXPECT_EQ(error->ft->getCIMStatusCode(error, nullptr), CMPI_RC_ERR_NOT_FOUND);
  EXPECT_EQ(error->ft->getErrorSource(error, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(error->ft->setErrorSource(error, "here").rc, CMPI_RC_OK);
  EXPECT_EQ(Text(error->ft->getErrorSource(error, nullptr)), "here");
  CMPIArray* actions = broker_->eft->newArray(broker_, 1, CMPI_string, nullptr);
  CMPIValue action;
  action.string = string("retry");
  actions->ft->setElementAt(actions, 0, &action, CMPI_string);
  EXPECT_EQ(error->ft->setRecommendedActions(error, actions).rc, CMPI_RC_OK);
  const CMPIArray* back = error->ft->getRecommendedActions(error, nullptr);
  EXPECT_EQ(Text(back->ft->getElementAt(back, 0, nullptr).value.string), "retry");
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

TEST_F(BrokerTablesTest, ToStringIsOfTypeAndGetTypeKnowTheHostsObjects) {
  CMPIStatus rc;
  CMPIObjectPath* op = path("Test_Keyed");
  EXPECT_EQ(Text(broker_->eft->toString(broker_, op, &rc)), "root/cimv2:Test_Keyed");
  EXPECT_EQ(Text(broker_->eft->getType(broker_, op, &rc)), "CMPIObjectPath");
  EXPECT_EQ(broker_->eft->isOfType(broker_, op, "CMPIObjectPath", &rc), 1);
  EXPECT_EQ(broker_->eft->isOfType(broker_, op, "CMPIInstance", &rc), 0);
  EXPECT_EQ(Text(broker_->eft->toString(broker_, string("s"), &rc)), "s");
}

// The key's width differs between header sets; the entry's own type decides.
template <typename Key, typename Destructor>
void ExerciseThreadKeys(const CMPIBrokerExtFT* ext, int (*create)(Key*, Destructor)) {
  Key key{};
  ASSERT_EQ(create(&key, nullptr), 0);
  int value = 5;
  EXPECT_EQ(ext->setThreadSpecific(key, &value), 0);
  EXPECT_EQ(ext->getThreadSpecific(key), &value);
  EXPECT_EQ(ext->destroyThreadKey(key), 0);
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

  void* mutex = ext->newMutex(0);
  ext->lockMutex(mutex);
  ext->lockMutex(mutex);  // recursive
  ext->unlockMutex(mutex);
  ext->unlockMutex(mutex);
  void* condition = ext->newCondition(0);
  timespec past{1, 0};
  ext->lockMutex(mutex);
  EXPECT_NE(ext->timedCondWait(condition, mutex, &past), 0);  // times out at once
  ext->unlockMutex(mutex);
  EXPECT_EQ(ext->signalCondition(condition), 0);
  ext->destroyCondition(condition);
  ext->destroyMutex(mutex);

  ExerciseThreadKeys(ext, ext->createThreadKey);
  int once = 0;
  EXPECT_EQ(ext->threadOnce(&once, CountOnce), 0);
  EXPECT_EQ(ext->threadOnce(&once, CountOnce), 0);
  EXPECT_EQ(gOnceCount.load(), 1);
  EXPECT_EQ(ext->threadSleep(1), 0);
  EXPECT_EQ(ext->joinThread(nullptr, nullptr), EINVAL);
  ext->lockMutex(nullptr);
}

}  // namespace
}  // namespace cmpihost::testing
