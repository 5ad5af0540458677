// The mount table reader: the kernel's escapes, hidden mounts, malformed
// lines, and which mounts count as file systems worth testing.
#include "MountTable.h"

#include <gtest/gtest.h>

#include <algorithm>
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
  for (const MountEntry& entry : entries) {
    points.push_back(entry.mountPoint);
  }
  return points;
}

TEST(MountTableTest, ReadsTheFourFieldsSkipsShortLinesAndALaterMountHidesTheEarlier) {
  const MountTable table = ParseText(
      "/dev/sda1 / ext4 rw,relatime 0 0\n"
      "\n"
      "garbage\n"
      "a b c\n"
      "//srv/my\\040share /mnt/my\\040share cifs ro,vers=3.0 0 0\n"
      "tmpfs /tmp tmpfs rw\n"  // dump and pass fields are optional here
      "/dev/sdc1 /tmp xfs ro 0 0\n");
  ASSERT_EQ(MountPoints(table.entries()), (std::vector<std::string>{"/", "/mnt/my share", "/tmp"}));
  const MountEntry& root = table.entries()[0];
  EXPECT_EQ(root.source, "/dev/sda1");
  EXPECT_EQ(root.type, "ext4");
  EXPECT_EQ(root.options, "rw,relatime");
  EXPECT_EQ(table.entries()[1].source, "//srv/my share");
  // The later mount of /tmp, in the earlier one's place.
  EXPECT_EQ(table.entries()[2].type, "xfs");
  EXPECT_TRUE(table.entries()[2].readOnly());
}

TEST(MountTableTest, UnescapesOnlyWhatTheKernelEscapes) {
  const struct {
    const char* field;
    const char* text;
  } cases[] = {
      {"a\\040b", "a b"},   {"\\134", "\\"},
      {"\\012x", "\nx"},    {"tail\\04", "tail\\04"},  // too short: kept
      {"tail\\", "tail\\"}, {"\\400", "\\400"},        // not a byte: kept
      {"\\08x", "\\08x"},                              // 8 is no octal digit
      {"\\101\\102", "AB"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UnescapeMountField(c.field), c.text) << c.field;
  }
}

TEST(MountTableTest, ReadOnlyIsTheOptionRoNotAWordContainingIt) {
  for (const auto& [options, readOnly] :
       std::vector<std::pair<std::string, bool>>{{"ro", true},
                                                 {"rw,ro", true},
                                                 {"ro,relatime", true},
                                                 {"rw,errors=remount-ro", false},
                                                 {"rootcontext=x", false},
                                                 {"", false}}) {
    MountEntry entry;
    entry.options = options;
    EXPECT_EQ(entry.readOnly(), readOnly) << options;
  }
}

TEST(MountTableTest, PseudoFileSystemsAreKernelInterfacesByTypeOrPlace) {
  const struct {
    const char* mountPoint;
    const char* type;
    bool pseudo;
  } cases[] = {
      {"/", "ext4", false},
      {"/run", "tmpfs", false},
      {"/", "overlay", false},
      {"/proc", "proc", true},
      {"/sys/fs/cgroup", "tmpfs", true},  // by place
      {"/dev/shm", "tmpfs", true},
      {"/mnt/elsewhere", "cgroup2", true},  // by type, wherever
      {"/run/user/1000/doc", "fusectl", true},
      {"/sysroot", "ext4", false},  // not below /sys
      {"/devdata", "xfs", false},
      {"/procs", "ext4", false},
  };
  for (const auto& c : cases) {
    MountEntry entry;
    entry.mountPoint = c.mountPoint;
    entry.type = c.type;
    EXPECT_EQ(IsPseudoFileSystem(entry), c.pseudo) << c.mountPoint << " " << c.type;
  }
}

TEST(MountTableTest, TestableKeepsStorageWhoseMountPointSurvivesThePathText) {
  for (const char* id : {"/mnt/my share", "/mnt/a,b=c.d'e"}) {
    EXPECT_TRUE(CanBeDeviceId(id)) << id;
  }
  for (const std::string& id :
       std::vector<std::string>{"", "/mnt/\"quoted\"", "/mnt/back\\slash", "/mnt/new\nline",
                                "/mnt/tab\t", std::string("/mnt/nul\0x", 10)}) {
    EXPECT_FALSE(CanBeDeviceId(id)) << id;
  }
  const MountTable table = ParseText(
      "proc /proc proc rw 0 0\n"
      "/dev/sda1 / ext4 rw 0 0\n"
      "tmpfs /dev/shm tmpfs rw 0 0\n"
      "/dev/sdb1 /mnt/\\042odd\\042 ext4 rw 0 0\n"
      "tmpfs /run tmpfs rw 0 0\n"
      "/dev/sda2 /boot ext2 ro 0 0\n");
  EXPECT_EQ(MountPoints(table.testable()), (std::vector<std::string>{"/", "/run", "/boot"}));

  const std::vector<std::string> here = MountPoints(MountTable::ReadProcSelfMounts().testable());
  EXPECT_NE(std::find(here.begin(), here.end(), "/"), here.end());
}

}  // namespace
}  // namespace filesystemdiag
