#include "tests/platform/ExecutorContract.h"

#include "KestrelApp/QtExecutor.h"

namespace kestrel {
namespace {

ExecutorSubject makeQt() {
  auto* const executor = new QtExecutor;
  return {std::unique_ptr<Executor>(executor), [executor](double seconds) {
            QtMainLoop loop;
            const auto end = executor->after(seconds, [&loop] { loop.stop(); });
            loop.run();
          }};
}

INSTANTIATE_TEST_SUITE_P(Executors, ExecutorContract, testing::Values(ExecutorKind{"qt", makeQt}));

}  // namespace
}  // namespace kestrel
