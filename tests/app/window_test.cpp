#include "app/window_test.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

namespace facet {

ModalAnswers::Answer chooseFile(const std::string& name, int type) {
  return [=](QWidget& modal) {
    auto* types = modal.findChild<QComboBox*>("fileTypeCombo");
    auto* line = modal.findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(types && line);
    for (int i = 0; i < type; ++i) QTest::keyClick(types, Qt::Key_Down);
    line->setText(toQString(name));
    QTest::keyClick(line, Qt::Key_Return);
  };
}

ModalAnswers::Answer press(QMessageBox::StandardButton button) {
  return [=](QWidget& modal) {
    auto* box = qobject_cast<QMessageBox*>(&modal);
    ASSERT_TRUE(box && box->button(button));
    box->button(button)->click();
  };
}

WindowTest::~WindowTest() {
  app().stop();
}

bool WindowTest::start(const std::string& model, std::optional<DeviceChoice> device) {
  CommandLine line = parseCommandLine({"vxmviewer", "--", model});
  line.device = device;
  if (!app().start(line)) return false;
  return QTest::qWaitForWindowExposed(&frame());
}

}  // namespace facet
