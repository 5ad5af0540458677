// Date-times: local time with the UTC offset in minutes from the host's
// clock, intervals, and which texts newDateTimeFromChars accepts.
#include <stdlib.h>
#include <time.h>

#include <chrono>

#include "HostTestSupport.h"

namespace cmpihost::testing {
namespace {

// 2024-03-04 05:06:07.089012 UTC
constexpr std::int64_t kFixedMicros = 1709528767089012;

class DateTimeTest : public HostTest {
 protected:
  DateTimeTest() {
    host_.setClock([] {
      return std::chrono::system_clock::time_point(std::chrono::microseconds(kFixedMicros));
    });
  }
  ~DateTimeTest() override { SetZone("UTC0"); }

  static void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

  std::string format(const CMPIDateTime* dateTime) {
    return Text(dateTime->ft->getStringFormat(dateTime, nullptr));
  }
};

TEST_F(DateTimeTest, NewDateTimeIsTheClocksLocalTimeWithItsOffsetInMinutes) {
  const struct {
    const char* zone;
    const char* text;
  } cases[] = {
      {"UTC0", "20240304050607.089012+000"},
      {"EST5", "20240304000607.089012-300"},
      {"NPT-5:45", "20240304105107.089012+345"},
  };
  for (const auto& c : cases) {
    SetZone(c.zone);
    CMPIStatus rc;
    CMPIDateTime* now = broker_->eft->newDateTime(broker_, &rc);
    ASSERT_EQ(rc.rc, CMPI_RC_OK);
    const std::string text = format(now);
    EXPECT_EQ(text, c.text) << c.zone;
    EXPECT_EQ(text.size(), 25u);
    EXPECT_EQ(now->ft->getBinaryFormat(now, nullptr), static_cast<CMPIUint64>(kFixedMicros));
    EXPECT_EQ(now->ft->isInterval(now, nullptr), 0);
  }
}

TEST_F(DateTimeTest, FromBinaryAndFromCharsMakePointsOrIntervals) {
  SetZone("EST5");
  EXPECT_EQ(format(broker_->eft->newDateTimeFromBinary(broker_, 0, 0, nullptr)),
            "19691231190000.000000-300");
  const CMPIUint64 interval = ((((3ULL * 24 + 4) * 60 + 5) * 60 + 6) * 1000000ULL) + 7;
  CMPIDateTime* span = broker_->eft->newDateTimeFromBinary(broker_, interval, 1, nullptr);
  EXPECT_EQ(format(span), "00000003040506.000007:000");
  EXPECT_EQ(span->ft->isInterval(span, nullptr), 1);
  EXPECT_EQ(span->ft->getBinaryFormat(span, nullptr), interval);

  // From chars: the text is kept, the instant computed from its own offset.
  SetZone("UTC0");
  CMPIStatus rc;
  CMPIDateTime* parsed =
      broker_->eft->newDateTimeFromChars(broker_, "20240304000607.089012-300", &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(format(parsed), "20240304000607.089012-300");
  EXPECT_EQ(parsed->ft->getBinaryFormat(parsed, nullptr), static_cast<CMPIUint64>(kFixedMicros));
  span = broker_->eft->newDateTimeFromChars(broker_, "00000001000000.500000:000", &rc);
  ASSERT_EQ(rc.rc, CMPI_RC_OK);
  EXPECT_EQ(span->ft->isInterval(span, nullptr), 1);
  EXPECT_EQ(span->ft->getBinaryFormat(span, nullptr), 86400500000ULL);
}

TEST_F(DateTimeTest, FromCharsRefusesAnythingButTheTwoForms) {
  const char* const bad[] = {
      "",
      "20240304000607.089012-30",   // 24 characters
      "2024030400060*.089012-300",  // wildcards are not accepted
      "20241304000607.089012+000",  // month 13
      "20240304240607.089012+000",  // hour 24
      "20240304000607,089012+000",  // the dot
      "00000001000000.000000:001",  // interval offset must be 000
      "2024-03-04T00:06:07.089012+0",
  };
  for (const char* text : bad) {
    CMPIStatus rc;
    EXPECT_EQ(broker_->eft->newDateTimeFromChars(broker_, text, &rc), nullptr) << text;
    EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER) << text;
  }
  CMPIStatus rc;
  EXPECT_EQ(broker_->eft->newDateTimeFromChars(broker_, nullptr, &rc), nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace cmpihost::testing
