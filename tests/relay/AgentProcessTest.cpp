#include <gtest/gtest.h>
#include <map>

#include "KestrelRelay/AgentProcess.h"

namespace kestrel {
namespace {

struct Relative {
  std::string name;
  std::int32_t parent;
};

// 10… is an ordinary family, 20… one whose agent is gone, 30… a loop, and 40… changes while it is looked at.
const std::map<std::int32_t, Relative> kFamily{
    {1, {"init", 0}},   {10, {"claude", 1}},   {11, {"sh", 10}},   {12, {"bash", 11}},
    {13, {"fish", 12}}, {14, {"bashful", 13}}, {20, {"zsh", 1}},   {21, {"busybox", 20}},
    {22, {"ksh", 0}},   {30, {"sh", 31}},      {31, {"dash", 30}}, {40, {"sh", 41}},
};

std::optional<std::string> nameOf(std::int32_t pid) {
  const auto found = kFamily.find(pid);
  return found == kFamily.end() ? std::nullopt : std::optional(found->second.name);
}

std::optional<std::int32_t> parentOf(std::int32_t pid) {
  const auto found = kFamily.find(pid);
  return found == kFamily.end() ? std::nullopt : std::optional(found->second.parent);
}

TEST(AgentProcessTest, SkipsShellsOnTheWayUp) {
  const ProcessQuestions family{nameOf, parentOf};
  EXPECT_EQ(nearestNonShell(10, family), 10);
  EXPECT_EQ(nearestNonShell(13, family), 10);
  EXPECT_EQ(nearestNonShell(14, family), 14);
  for (const std::int32_t start : {0, 1, 21, 22, 30, 40, 99}) {
    EXPECT_EQ(nearestNonShell(start, family), std::nullopt) << start;
  }
}

}  // namespace
}  // namespace kestrel
