// Call-scoped memory: objects die with the innermost scope or at their
// release, clones belong to the caller, nothing is made with no scope open,
// mark/release and attachThread open scopes of their own, and (under ASan)
// a provider that keeps a call's object is caught.
#include <thread>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

class MemoryTest : public HostTest {};

TEST_F(MemoryTest, TheInnermostScopeOwnsNewObjectsUntilItClosesOrTheyAreReleased) {
  const std::size_t outerLive = scope_->liveObjects();
  {
    CallScope inner(host_);
    const std::size_t innerLive = inner.liveObjects();  // its own context
    CMPIString* first = string("one");
    CMPIInstance* keyed = instance("Test_Keyed");  // and its path
    ASSERT_NE(keyed, nullptr);
    EXPECT_EQ(inner.liveObjects(), innerLive + 3);
    EXPECT_EQ(scope_->liveObjects(), outerLive);
    EXPECT_EQ(first->ft->release(first).rc, CMPI_RC_OK);
    EXPECT_EQ(inner.liveObjects(), innerLive + 2);
    // getProperty hands out a fresh string owned by the scope, too.
    keyed->ft->getProperty(keyed, "Name", nullptr);  // null: nothing made
    CMPIValue value;
    value.string = string("n");
    keyed->ft->setProperty(keyed, "Name", &value, CMPI_string);
    keyed->ft->getProperty(keyed, "Name", nullptr);
    EXPECT_EQ(inner.liveObjects(), innerLive + 4);
  }
  EXPECT_EQ(scope_->liveObjects(), outerLive);
}

TEST_F(MemoryTest, ACloneOutlivesItsScopeUntilReleased) {
  CMPIString* clone = nullptr;
  {
    CallScope inner(host_);
    CMPIString* original = string("survivor");
    clone = original->ft->clone(original, nullptr);
  }
  // Old provider macros read the characters straight from hdl.
  EXPECT_STREQ(static_cast<const char*>(clone->hdl), "survivor");
  EXPECT_EQ(Text(clone), "survivor");
  EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
}

TEST_F(MemoryTest, WithNoScopeOpenNothingIsMadeAndTheStatusSaysWhy) {
  CMPIInstance* kept = instance("Test_Keyed");
  CMPIValue number;
  number.uint32 = 4;
  kept->ft->setProperty(kept, "Number", &number, CMPI_uint32);
  CMPIInstance* clone = kept->ft->clone(kept, nullptr);
  std::thread([&] {
    CMPIStatus rc;
    EXPECT_EQ(broker_->eft->newString(broker_, "x", &rc), nullptr);
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
    EXPECT_NE(Text(rc.msg).find("no call scope is open"), std::string::npos) << Text(rc.msg);
    // Reading a scalar makes no object and works anywhere.
    EXPECT_EQ(clone->ft->getProperty(clone, "Number", &rc).value.uint32, 4u);
    EXPECT_EQ(rc.rc, CMPI_RC_OK);
    EXPECT_EQ(clone->ft->getObjectPath(clone, &rc), nullptr);
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
    CMPIString* name = nullptr;
    clone->ft->getPropertyAt(clone, 0, &name, &rc);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(broker_->mft->cmpiMalloc(broker_, 8), nullptr);
  }).join();
  clone->ft->release(clone);
}

TEST_F(MemoryTest, MarkAndReleaseFreeWhatWasMadeInBetween) {
  const std::size_t live = scope_->liveObjects();
  CMPIStatus rc;
  CMPIGcStat* mark = broker_->mft->mark(broker_, &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  string("a");
  string("b");
  char* copy = broker_->mft->cmpiStrDup(broker_, "dup");
  EXPECT_STREQ(copy, "dup");
  EXPECT_EQ(scope_->liveObjects(), live);
  EXPECT_EQ(broker_->mft->release(broker_, mark).rc, CMPI_RC_OK);
  EXPECT_EQ(scope_->liveObjects(), live);
  string("c");
  EXPECT_EQ(scope_->liveObjects(), live + 1);
  // A refusal's message is a string of the current scope, like any other.
  EXPECT_EQ(broker_->mft->release(broker_, mark).rc, CMPI_RC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(scope_->liveObjects(), live + 2);

  // Blocks belong to the scope too and can be freed early.
  void* block = broker_->mft->cmpiCalloc(broker_, 4, 4);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(static_cast<int*>(block)[3], 0);
  block = broker_->mft->cmpiRealloc(broker_, block, 1024);
  ASSERT_NE(block, nullptr);
  broker_->mft->cmpiFree(broker_, block);
  broker_->mft->cmpiMalloc(broker_, 16);  // left to the scope
}

TEST_F(MemoryTest, AnAttachedThreadHasItsOwnScopeUntilItDetaches) {
  CMPIContext* context = broker_->bft->prepareAttachThread(broker_, scope_->context());
  ASSERT_NE(context, nullptr);
  std::thread([&] {
    EXPECT_EQ(broker_->bft->attachThread(broker_, context).rc, CMPI_RC_OK);
    CMPIStatus rc;
    CMPIString* made = broker_->eft->newString(broker_, "on a thread", &rc);
    EXPECT_EQ(rc.rc, CMPI_RC_OK);
    EXPECT_EQ(Text(made), "on a thread");
    EXPECT_EQ(broker_->bft->detachThread(broker_, context).rc, CMPI_RC_OK);
    EXPECT_EQ(broker_->bft->detachThread(broker_, context).rc, CMPI_RC_ERR_FAILED);
  }).join();
}

#if defined(__SANITIZE_ADDRESS__)
#define CMPIHOST_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CMPIHOST_TEST_ASAN 1
#endif
#endif

#ifdef CMPIHOST_TEST_ASAN
// A provider that keeps the instance it made in one call and reads it in the next.
const CMPIBroker* gKeeperBroker = nullptr;
CMPIInstance* gKept = nullptr;

CMPIStatus KeeperEnumerate(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                           const CMPIObjectPath* reference, const char**) {
  if (gKept == nullptr) {
    gKept = gKeeperBroker->eft->newInstance(gKeeperBroker, reference, nullptr);  // kept: a bug
  } else {
    gKept->ft->getProperty(gKept, "Name", nullptr);
  }
  result->ft->returnDone(result);
  return CMPIStatus{CMPI_RC_OK, nullptr};
}

CMPIInstanceMI* KeeperFactory(const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  static CMPIInstanceMIFT table{};
  table.ftVersion = CMPIVersion200;
  table.miVersion = CMPIVersion200;
  table.miName = "keeper";
  table.enumerateInstances = KeeperEnumerate;
  static CMPIInstanceMI mi{nullptr, &table};
  gKeeperBroker = broker;
  return &mi;
}

TEST(KeptObjectDeathTest, AProviderKeepingACallsObjectIsCaught) {
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        Host host;
        host.loadMof(HOST_TEST_MOF);
        MiFactories factories;
        factories.instance = KeeperFactory;
        host.registerProvider(Registration("Keeper", {"Test_Keyed"}, true), factories);
        host.enumerateInstances("root/cimv2", "Test_Keyed");
        host.enumerateInstances("root/cimv2", "Test_Keyed");
      },
      "heap-use-after-free");
}
#endif

}  // namespace
}  // namespace cmpihost::testing
