#include "tests/app/WindowTest.h"

#include "KestrelApp/LiveView.h"

namespace kestrel {
namespace {

class CountingView final : public LiveView {
 public:
  using LiveView::LiveView;
  int refreshes = 0;

 protected:
  void refresh() override { ++refreshes; }
};

class LiveViewTest : public WindowTest {
 protected:
  template <typename Act>
  int refreshesAfter(const Act& act) {
    const int before = view_.refreshes;
    act();
    return view_.refreshes - before;
  }
  void wait(double seconds) { stage_.executor().advance(seconds); }

  CountingView view_{views_.context()};
};

TEST_F(LiveViewTest, FollowsEvaluationsTwiceASecondAtMostWhileItCanBeSeen) {
  const auto evaluateOnce = [&] { stage_.app().evaluate(); };
  EXPECT_EQ(refreshesAfter(evaluateOnce), 0) << "not shown yet";
  EXPECT_EQ(refreshesAfter([&] { view_.show(); }), 1);
  EXPECT_EQ(refreshesAfter([&] { evaluateOnce(), evaluateOnce(), wait(0.49); }), 0) << "just refreshed";
  EXPECT_EQ(refreshesAfter([&] { wait(0.02); }), 1) << "what was missed";
  EXPECT_EQ(refreshesAfter([&] { wait(5); }), 0) << "nothing happened";
  EXPECT_EQ(refreshesAfter(evaluateOnce), 1) << "after a rest at once";
}

TEST_F(LiveViewTest, RestsWhileHiddenOrMinimised) {
  view_.show();
  stage_.app().evaluate();
  view_.hide();
  EXPECT_EQ(refreshesAfter([&] { wait(2), evaluate(); }), 0) << "what was due goes away, too";
  EXPECT_EQ(refreshesAfter([&] { view_.show(); }), 1);
  view_.showMinimized();
  EXPECT_EQ(refreshesAfter([&] { wait(2), evaluate(); }), 0);
  EXPECT_GE(refreshesAfter([&] { view_.showNormal(), evaluate(); }), 1);
}

}  // namespace
}  // namespace kestrel
