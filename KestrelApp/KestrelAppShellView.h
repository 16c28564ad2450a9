#pragma once

#include <QWidget>
#include <array>
#include <cstddef>

class QStackedWidget;

namespace kestrel {

class SidebarView;
struct ViewContext;

/// The main window's content: six sections, each made when it is first shown, and a sidebar to choose among
/// them; Control (on macOS Command) and 1 to 6 do the same. Main thread.
class KestrelAppShellView final : public QWidget {
 public:
  enum class Section { overview, agents, appearance, power, budget, settings };

  /// The context outlives the view.
  explicit KestrelAppShellView(ViewContext& context, QWidget* parent = nullptr);

  void showSection(Section section);
  [[nodiscard]] Section section() const { return section_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  static constexpr std::size_t kSections = 6;

  [[nodiscard]] QWidget* makeSection(Section section);

  ViewContext& context_;
  SidebarView* sidebar_;
  QStackedWidget* stack_;
  /// Null until they are shown.
  std::array<QWidget*, kSections> sections_{};
  Section section_ = Section::overview;
};

}  // namespace kestrel
