#include "qt/window/OptionsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "qt/toolkit/Mnemonics.h"
#include "qt/toolkit/Text.h"
#include "qt/toolkit/Views.h"
#include "qt/window/Card.h"
#include "words/Language.h"

namespace quorel::qt {

OptionsDialog::OptionsDialog(QWidget* parent)
    : QDialog(parent),
      _updates(new QCheckBox(qString(translated("Check for updates")), this)),
      _frequency(new QComboBox(this)),
      _menu(new QCheckBox(qString(translated("Show in the panel")), this)),
      _checkNow(new QPushButton(qString(translated("Check Now")), this)),
      _about(new QPushButton(qString(translated("About Quorel")), this)) {
    setWindowTitle(qString(translated("Options")));
    setWindowModality(Qt::WindowModal);
    _frequency->setAccessibleName(qString(translated("How often to check")));
    auto* const form = new QFormLayout;
    form->addRow(_updates);
    form->addRow(qString(translated("How often")), _frequency);
    form->addRow(QString(), _checkNow);
    form->addRow(_menu);
    auto* const buttons = new QDialogButtonBox(this);
    buttons->addButton(_about, QDialogButtonBox::HelpRole);
    auto* const close = buttons->addButton(qString(translated("Close")), QDialogButtonBox::RejectRole);
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(form);
    whole->addWidget(makeLabel(this, Weight::kSmall, qString(translated("Options hold once you apply them."))));
    whole->addStretch();
    whole->addWidget(buttons);
    giveMnemonics(*this);
}

void OptionsDialog::connectTo(VXPrefPaneController& owner) {
    auto& outlets = owner.outlets;
    outlets.checkUpdateAtStartup = std::make_shared<Button>(_updates);
    outlets.popUpUpdate = std::make_shared<PopUpButton>(_frequency);
    outlets.menuCheck = std::make_shared<Button>(_menu);
    outlets.networkAdminCheck = std::make_shared<Button>(nullptr);
    connect(_updates, &QCheckBox::clicked, this,
            [&owner] { owner.checkboxAction(owner.outlets.checkUpdateAtStartup.get()); });
    connect(_menu, &QCheckBox::clicked, this, [&owner] { owner.checkboxAction(owner.outlets.menuCheck.get()); });
    connect(_frequency, qOverload<int>(&QComboBox::activated), this,
            [&owner] { owner.checkboxAction(owner.outlets.popUpUpdate.get()); });
    connect(_checkNow, &QPushButton::clicked, this,
            [&owner, sender = std::make_shared<Button>(_checkNow)] { owner.checkUpdates(sender); });
    connect(_about, &QPushButton::clicked, this,
            [&owner, sender = std::make_shared<Button>(_about)] { owner.about(sender.get()); });
}

AboutDialog::AboutDialog(QWidget* parent, const QString& copyright, const QString& image)
    : QDialog(parent), _version(makeLabel(this, Weight::kText)) {
    setWindowTitle(qString(translated("About Quorel")));
    auto* const whole = new QVBoxLayout(this);
    auto* const picture = new QLabel(this);
    picture->setPixmap(QPixmap(image));
    picture->setAlignment(Qt::AlignCenter);
    whole->addWidget(picture);
    for (QLabel* label : {makeLabel(this, Weight::kTitle, QStringLiteral("Quorel")), _version,
                          makeLabel(this, Weight::kSmall, copyright)}) {
        label->setAlignment(Qt::AlignCenter);
        whole->addWidget(label);
    }
    auto* const buttons = new QDialogButtonBox(this);
    buttons->addButton(qString(translated("Close")), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &AboutDialog::reject);
    whole->addWidget(buttons);
}

void AboutDialog::connectTo(VXPrefPaneController& owner) {
    _owner = &owner;
    owner.outlets.aboutSheet = std::make_shared<Window>(this);
    owner.outlets.theVersion = std::make_shared<TextField>(_version);
}

void AboutDialog::reject() {
    if (_owner) _owner->closeSheet(nullptr);
}

}  // namespace quorel::qt
