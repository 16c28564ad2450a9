#pragma once

#include <functional>
#include <string>

class QString;
class QWidget;

namespace kestrel {

/// Asks before something is lost, in a dialog on top of the parent's window. The first line is the question,
/// what follows explains it; nothing happens unless the button with the action's word is pressed. Does not
/// wait.
void askFirst(QWidget& parent, const std::string& question, const QString& actionWord,
              std::function<void()> onConfirmed);

}  // namespace kestrel
