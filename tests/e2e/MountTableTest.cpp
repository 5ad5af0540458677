// The mount table reader: the kernel's escapes, hidden mounts, malformed
// lines, and which mounts count as file systems worth testing.
#include "MountTable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace filesystemdiag {
namespace {

MountTable ParseText(const std::string& text) {
  std::istringstream in(text);
  return MountTable::Parse(in);
}

std::vector<std::string> MountPoints(const std::vector<MountEntry>& entries) {
  std::vector<std::string> points;
  points.reserve(entries.size());
  for (const MountEntry& entry : entries) {
    points.push_back(entry.mountPoint);
  }
  return points;
}

TEST(MountTableTest, ReadsTheFourFieldsAndResolvesTheKernelsEscapes) {
  const MountTable table = ParseText(
      "/dev/sda1 / ext4 rw,relatime 0 0\n"
      "//srv/my\\040share /mnt/my\\040share cifs ro,vers=3.0 0 0\n"
      "/dev/sdb1 /mnt/tab\\011and\\134back xfs rw 0 0\n");
  ASSERT_EQ(table.entries().size(), 3U);
  const MountEntry& root = table.entries()[0];
  EXPECT_EQ(root.source, "/dev/sda1");
  EXPECT_EQ(root.mountPoint, "/");
  EXPECT_EQ(root.type, "ext4");
  EXPECT_EQ(root.options, "rw,relatime");
  EXPECT_EQ(table.entries()[1].source, "//srv/my share");
  EXPECT_EQ(table.entries()[1].mountPoint, "/mnt/my share");
  EXPECT_EQ(table.entries()[2].mountPoint, "/mnt/tab\tand\\back");
}

TEST(MountTableTest, SkipsLinesWithTooFewFields) {
  const MountTable table = ParseText(
      "\n"
      "garbage\n"
      "a b c\n"
      "tmpfs /run tmpfs rw\n");  // dump and pass fields are optional here
  EXPECT_EQ(MountPoints(table.entries()), std::vector<std::string>{"/run"});
}

TEST(MountTableTest, ALaterMountOfTheSamePointHidesTheEarlierInItsPlace) {
  const MountTable table = ParseText(
      "/dev/sda1 / ext4 rw 0 0\n"
      "tmpfs /tmp tmpfs rw 0 0\n"
      "/dev/sda2 /home ext4 rw 0 0\n"
      "/dev/sdc1 /tmp xfs ro 0 0\n");
  EXPECT_EQ(MountPoints(table.entries()), (std::vector<std::string>{"/", "/tmp", "/home"}));
  EXPECT_EQ(table.entries()[1].type, "xfs");
  EXPECT_EQ(table.entries()[1].source, "/dev/sdc1");
  EXPECT_TRUE(table.entries()[1].readOnly());
}

TEST(MountTableTest, ReadOnlyIsTheOptionRoNotAWordContainingIt) {
  const struct {
    const char* options;
    bool readOnly;
  } cases[] = {
      {"ro", true},
      {"rw,ro", true},
      {"ro,relatime", true},
      {"rw,relatime", false},
      {"rw,errors=remount-ro", false},
      {"rootcontext=x", false},
      {"", false},
  };
  for (const auto& c : cases) {
    MountEntry entry;
    entry.options = c.options;
    EXPECT_EQ(entry.readOnly(), c.readOnly) << c.options;
  }
}

TEST(MountTableTest, UnescapesOnlyWhatTheKernelEscapes) {
  const struct {
    const char* field;
    const char* text;
  } cases[] = {
      {"plain", "plain"},   {"a\\040b", "a b"},       {"\\134", "\\"},
      {"\\012x", "\nx"},    {"tail\\04", "tail\\04"},  // too short: kept
      {"tail\\", "tail\\"},                            // nothing after the backslash
      {"\\400", "\\400"},                              // not a byte: kept
      {"\\08x", "\\08x"},                              // 8 is no octal digit
      {"\\101\\102", "AB"},                            // one after the other
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UnescapeMountField(c.field), c.text) << c.field;
  }
}

TEST(MountTableTest, PseudoFileSystemsAreKernelInterfacesByTypeOrPlace) {
  const struct {
    const char* mountPoint;
    const char* type;
    bool pseudo;
  } cases[] = {
      {"/", "ext4", false},
      {"/home", "xfs", false},
      {"/run", "tmpfs", false},
      {"/tmp", "tmpfs", false},
      {"/", "overlay", false},
      {"/proc", "proc", true},
      {"/sys", "sysfs", true},
      {"/sys/fs/cgroup", "tmpfs", true},  // by place
      {"/dev/shm", "tmpfs", true},        // by place
      {"/dev", "devtmpfs", true},
      {"/mnt/elsewhere", "cgroup2", true},  // by type, wherever
      {"/run/user/1000/doc", "fusectl", true},
      {"/proc/sys/fs/binfmt_misc", "binfmt_misc", true},
      {"/sysroot", "ext4", false},  // not below /sys
      {"/devdata", "xfs", false},   // not below /dev
      {"/procs", "ext4", false},
  };
  for (const auto& c : cases) {
    MountEntry entry;
    entry.mountPoint = c.mountPoint;
    entry.type = c.type;
    EXPECT_EQ(IsPseudoFileSystem(entry), c.pseudo) << c.mountPoint << " " << c.type;
  }
}

TEST(MountTableTest, ADeviceIdMustSurviveTheLibrarysPathText) {
  EXPECT_TRUE(CanBeDeviceId("/"));
  EXPECT_TRUE(CanBeDeviceId("/mnt/my share"));
  EXPECT_TRUE(CanBeDeviceId("/mnt/a,b=c.d'e"));
  EXPECT_FALSE(CanBeDeviceId(""));
  EXPECT_FALSE(CanBeDeviceId("/mnt/\"quoted\""));
  EXPECT_FALSE(CanBeDeviceId("/mnt/back\\slash"));
  EXPECT_FALSE(CanBeDeviceId("/mnt/new\nline"));
  EXPECT_FALSE(CanBeDeviceId("/mnt/tab\t"));
  EXPECT_FALSE(CanBeDeviceId(std::string("/mnt/nul\0x", 10)));
}

TEST(MountTableTest, TestableKeepsStorageInTableOrder) {
  const MountTable table = ParseText(
      "proc /proc proc rw 0 0\n"
      "/dev/sda1 / ext4 rw 0 0\n"
      "tmpfs /dev/shm tmpfs rw 0 0\n"
      "/dev/sdb1 /mnt/\\042odd\\042 ext4 rw 0 0\n"
      "tmpfs /run tmpfs rw 0 0\n"
      "/dev/sda2 /boot ext2 ro 0 0\n");
  EXPECT_EQ(MountPoints(table.testable()), (std::vector<std::string>{"/", "/run", "/boot"}));
  EXPECT_EQ(table.entries().size(), 6U);
}

TEST(MountTableTest, ThisProcessSeesItsRootMounted) {
  const MountTable table = MountTable::ReadProcSelfMounts();
  const std::vector<std::string> points = MountPoints(table.testable());
  EXPECT_NE(std::find(points.begin(), points.end(), "/"), points.end());
}

}  // namespace
}  // namespace filesystemdiag
