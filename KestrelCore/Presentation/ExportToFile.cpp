#include "KestrelCore/Presentation/ExportToFile.h"

#include <utility>

#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {

ExportToFile::ExportToFile(std::shared_ptr<const AtomicFileWriter> files, Executor& mainExecutor)
    : files_(std::move(files)), mainExecutor_(mainExecutor) {}

void ExportToFile::write(const std::filesystem::path& chosen, std::string content, Done done) {
  if (!worker_) worker_ = std::make_unique<SerialQueue>("com.kestrel.export");
  worker_->post([this, alive = std::weak_ptr(alive_), files = files_, chosen, content = std::move(content),
                 done = std::move(done)] {
    const FileFailure failure = files->writeChosen(chosen, content);
    const Result result{!failure, failure ? "Nothing was saved. " + *failure : "Saved as " + chosen.string()};
    mainExecutor_.post([alive, done, result] {
      if (!alive.expired()) done(result);
    });
  });
}

void ExportToFile::writeUsage(const std::filesystem::path& chosen, UsageCoordinator& usage, Done done) {
  usage.exportPrivacySafeJSON(
      [this, alive = std::weak_ptr(alive_), chosen, done = std::move(done)](const std::string& text) {
        if (!alive.expired()) write(chosen, text + "\n", done);
      });
}

}  // namespace kestrel
