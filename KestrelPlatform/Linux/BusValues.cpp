#include "KestrelPlatform/Linux/BusValues.h"

#include <cerrno>
#include <utility>

namespace kestrel {
namespace {

template <typename Wire>
std::optional<BusValue> readInteger(sd_bus_message* message, char type, int& status) {
  Wire value = 0;
  status = sd_bus_message_read_basic(message, type, &value);
  if (status <= 0 || !std::in_range<std::int64_t>(value)) return std::nullopt;
  return static_cast<std::int64_t>(value);
}

std::optional<BusValue> readPlain(sd_bus_message* message, char type, int& status) {
  switch (type) {
    case 'b': {
      int value = 0;
      status = sd_bus_message_read_basic(message, type, &value);
      return status > 0 ? std::optional<BusValue>(value != 0) : std::nullopt;
    }
    case 'd': {
      double value = 0;
      status = sd_bus_message_read_basic(message, type, &value);
      return status > 0 ? std::optional<BusValue>(value) : std::nullopt;
    }
    case 's': {
      const char* value = nullptr;
      status = sd_bus_message_read_basic(message, type, &value);
      return status > 0 ? std::optional<BusValue>(std::string(value)) : std::nullopt;
    }
    case 'y':
      return readInteger<std::uint8_t>(message, type, status);
    case 'n':
      return readInteger<std::int16_t>(message, type, status);
    case 'q':
      return readInteger<std::uint16_t>(message, type, status);
    case 'i':
      return readInteger<std::int32_t>(message, type, status);
    case 'u':
      return readInteger<std::uint32_t>(message, type, status);
    case 'x':
      return readInteger<std::int64_t>(message, type, status);
    case 't':
      return readInteger<std::uint64_t>(message, type, status);
    default:
      return std::nullopt;
  }
}

bool isPlain(const char* contents) {
  return contents[0] != '\0' && contents[1] == '\0' &&
         std::string_view("bdsynqiuxt").find(contents[0]) != std::string_view::npos;
}

}  // namespace

std::optional<BusValue> readBusVariant(sd_bus_message* message, int& status) {
  char type = 0;
  const char* contents = nullptr;
  status = sd_bus_message_peek_type(message, &type, &contents);
  if (status > 0 && type != SD_BUS_TYPE_VARIANT) status = -EBADMSG;
  if (status <= 0) return std::nullopt;
  if (!isPlain(contents)) {
    status = sd_bus_message_skip(message, "v");
    return std::nullopt;
  }
  status = sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents);
  if (status <= 0) return std::nullopt;
  auto value = readPlain(message, contents[0], status);
  if (status > 0) status = sd_bus_message_exit_container(message);
  return value;
}

std::optional<BusValues> readBusDictionary(sd_bus_message* message) {
  BusValues values;
  if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0) return std::nullopt;
  int status = 0;
  while ((status = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv")) > 0) {
    const char* name = nullptr;
    status = sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &name);
    if (status <= 0) return std::nullopt;
    auto value = readBusVariant(message, status);
    if (status < 0 || sd_bus_message_exit_container(message) < 0) return std::nullopt;
    if (value) values.insert_or_assign(name, std::move(*value));
  }
  return status < 0 ? std::nullopt : std::optional(std::move(values));
}

}  // namespace kestrel
