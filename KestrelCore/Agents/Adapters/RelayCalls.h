#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace kestrel {

/// A word for a POSIX shell; quoted only when it has to be.
std::string shellWord(std::string_view text);

/// A string literal of JSON, which JavaScript and TOML read as well. Takes valid UTF-8.
std::string stringLiteral(std::string_view text);

/// "'/opt/a b/kestrel-relay' --agent claude --state auto": the relay takes the state from the hook's event.
std::string relayCommand(std::string_view relayBinaryPath, std::string_view agent);

/// A JSON document with the member "hooks", in which each of the events starts the command. The timeout is
/// in the agent's own unit.
std::string hooksDocument(std::initializer_list<std::string_view> events, std::string_view command,
                          int timeout);

}  // namespace kestrel
