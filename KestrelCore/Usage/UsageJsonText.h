#pragma once

#include <string>
#include <string_view>

#include "KestrelCore/Usage/SessionUsageRecord.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

// Compact JSON, made without a document in between, for stores of any size. Members stand in the declared
// order, absent ones are left out, and every double reads back equal. Texts must be UTF-8, doubles finite.

void appendJson(std::string& out, std::string_view text);
void appendJson(std::string& out, const UsageEvent& event);
void appendJson(std::string& out, const SessionUsageRecord& record);

}  // namespace kestrel
