#pragma once

namespace kestrel {

/// The services of the folder packaging/ for this system, as format texts whose one argument is the folder of
/// the helper's executable.
extern const char* const kSystemServiceText;
extern const char* const kUserServiceText;

}  // namespace kestrel
