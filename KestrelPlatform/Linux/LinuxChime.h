#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/Chime.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// Event sounds of the desktop's sound theme, played by `player` (kestrel-chime) in a process of its own: a
/// sound service may take its time. The beep is a terminal's bell. Main thread; the executor must outlive it.
std::unique_ptr<Chime> makeLinuxChime(Executor& executor, std::shared_ptr<LogSink> sink,
                                      std::filesystem::path player);

}  // namespace kestrel
