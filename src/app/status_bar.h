#pragma once

#include <QLabel>
#include <QStatusBar>
#include <array>

namespace facet {

/// The message pane and the panes of the three lock keys.
class StatusBar final : public QStatusBar {
 public:
  explicit StatusBar(QWidget* parent = nullptr);

  /// Shows a message and repaints at once: whoever says something may be busy for long.
  void print(const QString& text);

  /// Shows the prompt of the menu entry under the cursor; an empty one, that there is none any more.
  void prompt(const QString& text);

  /// Lights the panes of the lock keys that are on.
  void updateLockKeys();

  QString message() const { return message_->text(); }
  bool lit(size_t indicator) const { return indicators_[indicator]->isEnabled(); }

 private:
  QLabel* message_;
  std::array<QLabel*, 3> indicators_;
  bool prompting_ = false;
};

}  // namespace facet
