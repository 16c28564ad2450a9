#pragma once

namespace kestrel {

/// How a text or a figure is meant; the front end chooses the colour.
enum class Tone { normal, muted, accent, good, warn, bad };

}  // namespace kestrel
