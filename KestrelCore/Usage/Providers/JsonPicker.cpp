#include "KestrelCore/Usage/Providers/JsonPicker.h"

#include <algorithm>
#include <cmath>
#include <simdjson.h>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

namespace ondemand = simdjson::ondemand;

static_assert(JsonPicker::kPadding >= simdjson::SIMDJSON_PADDING);

/// A parser keeps memory for the longest text that it has seen; a longer one than this is given back.
constexpr std::size_t kKeptCapacity = std::size_t{1} << 20;

struct Object {};
using Value = std::variant<std::monostate, Object, std::string_view, std::int64_t, double>;

/// A member that is asked for, or that leads to one.
struct Node {
  std::string name;
  /// Its place among the values.
  std::size_t value = 0;
  std::vector<Node> children;
};

Value scalarOf(ondemand::value value, ondemand::json_type type) {
  if (type == ondemand::json_type::string) {
    std::string_view text;
    return value.get_string().get(text) == simdjson::SUCCESS ? Value(text) : Value();
  }
  ondemand::number number;
  if (type != ondemand::json_type::number || value.get_number().get(number) != simdjson::SUCCESS) return {};
  if (number.is_int64()) return number.get_int64();
  return number.as_double();
}

}  // namespace

struct JsonPicker::State {
  simdjson::error_code parse(std::string_view text) {
    if (parser.capacity() > kKeptCapacity && text.size() <= kKeptCapacity) parser = ondemand::parser();
    std::ranges::fill(values, Value());
    ondemand::document document;
    if (const auto error = parser.iterate(text.data(), text.size(), text.size() + kPadding).get(document)) {
      return error;
    }
    ondemand::object object;
    if (const auto error = document.get_object().get(object)) return error;
    if (const auto error = pick(object, root)) return error;
    const bool isAll = document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    return isAll ? simdjson::SUCCESS : simdjson::TRAILING_CONTENT;
  }

  simdjson::error_code pick(ondemand::object object, const Node& node) {
    for (auto result : object) {
      ondemand::field field;
      if (const auto error = std::move(result).get(field)) return error;
      std::string_view name;
      if (const auto error = field.unescaped_key().get(name)) return error;
      const auto child = std::ranges::find(node.children, name, &Node::name);
      if (child == node.children.end()) continue;
      ondemand::json_type type{};
      if (const auto error = field.value().type().get(type)) return error;
      if (type != ondemand::json_type::object) {
        values[child->value] = scalarOf(field.value(), type);
        continue;
      }
      ondemand::object inner;
      if (const auto error = field.value().get_object().get(inner)) return error;
      values[child->value] = Object();
      if (const auto error = pick(inner, *child)) return error;
    }
    return simdjson::SUCCESS;
  }

  void add(std::string_view path) {
    Node* node = &root;
    while (!path.empty()) {
      const auto name = path.substr(0, path.find('.'));
      path.remove_prefix(std::min(name.size() + 1, path.size()));
      auto child = std::ranges::find(node->children, name, &Node::name);
      if (child == node->children.end()) {
        child = node->children.insert(child, Node{std::string(name), nodeCount++, {}});
      }
      node = &*child;
    }
    valueOfPath.push_back(node->value);
  }

  [[nodiscard]] const Value& at(std::size_t path) const { return values[valueOfPath[path]]; }

  Node root;
  std::size_t nodeCount = 0;
  std::vector<std::size_t> valueOfPath;
  std::vector<Value> values;
  ondemand::parser parser;
  std::string repaired;
};

JsonPicker::JsonPicker(std::initializer_list<std::string_view> paths) : state_(std::make_unique<State>()) {
  for (const auto path : paths) state_->add(path);
  state_->values.resize(state_->nodeCount);
}

JsonPicker::~JsonPicker() = default;

bool JsonPicker::read(std::string_view text) {
  auto error = state_->parse(text);
  if (error == simdjson::UTF8_ERROR) {
    state_->repaired = text;
    makeUtf8(state_->repaired);
    state_->repaired.resize(text.size() + kPadding);
    error = state_->parse({state_->repaired.data(), text.size()});
  }
  return error == simdjson::SUCCESS;
}

bool JsonPicker::isObject(std::size_t path) const {
  return std::holds_alternative<Object>(state_->at(path));
}

std::optional<std::string_view> JsonPicker::string(std::size_t path) const {
  const auto* text = std::get_if<std::string_view>(&state_->at(path));
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::optional<std::int64_t> JsonPicker::integer(std::size_t path) const {
  if (const auto* whole = std::get_if<std::int64_t>(&state_->at(path))) return *whole;
  const auto* real = std::get_if<double>(&state_->at(path));
  // 2^53: beyond it a double is no exact count any more.
  constexpr double kLimit = 9'007'199'254'740'992.0;
  if (real == nullptr || !(std::abs(*real) <= kLimit) || *real != std::trunc(*real)) return std::nullopt;
  return static_cast<std::int64_t>(*real);
}

std::optional<double> JsonPicker::number(std::size_t path) const {
  if (const auto* whole = std::get_if<std::int64_t>(&state_->at(path))) return static_cast<double>(*whole);
  const auto* real = std::get_if<double>(&state_->at(path));
  return real != nullptr && std::isfinite(*real) ? std::optional(*real) : std::nullopt;
}

std::optional<std::int64_t> JsonPicker::tokens(std::size_t path) const {
  const auto count = integer(path);
  return count && *count >= 0 && *count <= kMaximumTokens ? count : std::nullopt;
}

}  // namespace kestrel
