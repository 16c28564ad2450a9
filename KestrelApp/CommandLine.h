#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// What the options ask to be printed before the program ends with status 0; absent when it shall start.
/// Looks at the full argument list; an option counts wherever it stands, and anything unknown is ignored.
std::optional<std::string> answerToOptions(const std::vector<std::string>& arguments);

/// Prints that answer to standard output; false when there is none.
bool printAnswerToOptions(const std::vector<std::string>& arguments);

/// How a person calls another of Kestrel's executables: by the path beside the own executable, quoted for the
/// shell where needed, or by the bare name when the own one was found through PATH.
std::string siblingCommand(const std::string& ownPath, const std::string& name);

}  // namespace kestrel
