#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

enum class FrontEnd { desktop, headless };

/// Windows, unless there is nobody to see them or `--headless` stands anywhere among the arguments.
FrontEnd chooseFrontEnd(const std::vector<std::string>& arguments, bool mayHaveDisplay);

/// The argument list that goes on without a display after one was lost. `program` is the small executable,
/// `sessions` the descriptor from which it takes over the sessions; -1 for none.
std::vector<std::string> commandWithoutDisplay(const std::string& program, int sessions);
/// The descriptor in such a list, which may be -1; absent in every other list.
std::optional<int> sessionsOfLostDisplay(const std::vector<std::string>& arguments);

/// What both executables of the application do once their options are answered: find the user's folders and
/// choose the front end. `runDesktop` is the whole life of the program with windows; when it returns nothing
/// there can be none, and the program goes on without. Returns the exit status.
int launch(const std::vector<std::string>& arguments,
           const std::function<std::optional<int>(const Directories&)>& runDesktop);

/// Replaces this process; returns only when that fails, with the reason in words.
std::string replaceProcess(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace kestrel
