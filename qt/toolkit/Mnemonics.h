#pragma once

class QWidget;

namespace quorel::qt {

/// Gives each button and each label of a control below `top` that is to be seen a letter of its own, which Alt brings
/// one there by, as long as there are letters. Again whenever others are to be seen. In any language, so no text has to
/// carry one.
void giveMnemonics(QWidget& top);

}  // namespace quorel::qt
