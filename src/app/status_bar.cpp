#include "app/status_bar.h"

#include <QStyle>
#include <algorithm>

#include "app/text.h"
#include "app/x11.h"
#include "commands/command_table.h"

namespace facet {

StatusBar::StatusBar(QWidget* parent) : QStatusBar(parent), message_(new QLabel(this)) {
  message_->setText(toQString(idleStatusText));
  message_->setTextFormat(Qt::PlainText);
  message_->setObjectName("message");
  message_->setMinimumWidth(1);  // a long message must not widen the window
  message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  addWidget(message_, 1);
  for (size_t i = 0; i < indicators_.size(); ++i) {
    auto* pane = new QLabel(toQString(lockIndicators[i]), this);
    pane->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    pane->setObjectName(toQString(lockIndicators[i]));
    pane->setEnabled(false);
    addPermanentWidget(pane);
    indicators_[i] = pane;
  }
  updateLockKeys();
}

void StatusBar::print(const QString& text) {
  prompting_ = false;
  QString line = text;  // names of files may hold line breaks of any kind
  const auto breaks = [](QChar c) { return c.isSpace() || c.category() == QChar::Other_Control; };
  std::replace_if(line.begin(), line.end(), breaks, QChar(' '));
  message_->setText(line);
  if (isVisible()) message_->repaint();
}

void StatusBar::prompt(const QString& text) {
  if (text.isEmpty() && !prompting_) return;
  prompting_ = !text.isEmpty();
  message_->setText(prompting_ ? text : toQString(idleStatusText));
}

void StatusBar::updateLockKeys() {
  const unsigned on = lockKeys();
  for (size_t i = 0; i < indicators_.size(); ++i) indicators_[i]->setEnabled((on >> i & 1) != 0);
}

}  // namespace facet
