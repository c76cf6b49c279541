#pragma once

#include <QDialog>

#include "pane/VXPrefPaneController.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace quorel::qt {

/// The product's options, which hold once they are applied, and the update check.
class OptionsDialog : public QDialog {
public:
    explicit OptionsDialog(QWidget* parent);
    void connectTo(VXPrefPaneController& owner);

private:
    QCheckBox* const _updates;
    QComboBox* const _frequency;
    QCheckBox* const _menu;
    QPushButton* const _checkNow;
    QPushButton* const _about;
};

/// The installed version, over the window.
class AboutDialog : public QDialog {
public:
    AboutDialog(QWidget* parent, const QString& copyright, const QString& image);
    void connectTo(VXPrefPaneController& owner);
    void reject() override;

private:
    QLabel* const _version;
    VXPrefPaneController* _owner = nullptr;
};

}  // namespace quorel::qt
