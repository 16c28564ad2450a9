#include <gtest/gtest.h>
#include <string>

#include "KestrelCore/Support/Published.h"

namespace kestrel {
namespace {

TEST(Published, TellsOnlyOfDifferentValues) {
  Published<std::string> published("a");
  std::string told;
  auto subscription = published.subscribe([&](const std::string& value) {
    told += value;
    EXPECT_EQ(published.get(), value);
  });
  for (const char* value : {"a", "b", "b", "c"}) published.set(value);
  subscription.reset();
  published.set("d");
  EXPECT_EQ(told, "bc");
}

TEST(Signal, SubscribersComeAndGoWhileItIsFired) {
  Signal<> signal;
  std::string told;
  RegistrationPtr first, second, third, late;
  first = signal.subscribe([&] {
    told += '1';
    third.reset();
  });
  second = signal.subscribe([&] {
    told += '2';
    second.reset();
    if (!late) late = signal.subscribe([&] { told += 'L'; });
    if (told.size() < 10) signal();  // What has ended is not called again.
  });
  third = signal.subscribe([&] { told += '3'; });
  signal();
  EXPECT_EQ(told, "121L");
  signal();
  EXPECT_EQ(told, "121L1L");
}

}  // namespace
}  // namespace kestrel
