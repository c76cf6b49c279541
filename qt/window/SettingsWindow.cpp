#include "qt/window/SettingsWindow.h"

#include <QAccessibleWidget>
#include <QCloseEvent>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "model/Wire.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

QPushButton* button(QWidget* parent, const char* text) {
    auto* const made = new QPushButton(qString(text), parent);
    made->setAutoDefault(false);
    return made;
}

/// A plain widget counts as a part of something; a screen reader looks for a window.
QAccessibleInterface* accessibleWindow(const QString& /*name*/, QObject* object) {
    auto* const window = dynamic_cast<SettingsWindow*>(object);
    return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

}  // namespace

SettingsWindow::SettingsWindow(DaemonView& plan, const QString& copyright, const QString& picture)
    : lockBar(new QFrame(this)),
      lockText(makeLabel(lockBar, Weight::kText)),
      lockButton(button(lockBar, translated("Unlock…"))),
      noticeBar(new QFrame(this)),
      noticeText(makeLabel(noticeBar, Weight::kText)),
      noticeClose(button(noticeBar, translated("Close"))),
      next(new NextCard(this, plan, [this](const QString& failure) { notice(failure); })),
      add(button(this, translated("Add…"))),
      edit(button(this, translated("Edit…"))),
      remove(button(this, translated("Delete"))),
      list(new ScheduleList(this)),
      suggestion(new Card(this)),
      useThis(button(suggestion, translated("Use this"))),
      makeOwn(button(suggestion, translated("Make my own…"))),
      happenedTitle(makeLabel(this, Weight::kHeading, qString(translated("What happened")))),
      happened(new HappenedList(this)),
      showAll(button(this, translated("Show all"))),
      daemonLight(new QLabel(this)),
      daemonText(makeLabel(this, Weight::kSmall)),
      agentLight(new QLabel(this)),
      agentText(makeLabel(this, Weight::kSmall)),
      undo(button(this, translated("Undo delete"))),
      revert(button(this, translated("Discard"))),
      apply(button(this, translated("Apply"))),
      options(button(this, translated("Options…"))),
      sheet(new EditSheet(this)),
      optionsDialog(new OptionsDialog(this)),
      about(new AboutDialog(this, copyright, picture)) {
    setWindowTitle(QStringLiteral("Quorel"));
    QAccessible::installFactory(accessibleWindow);
    lockButton->setCheckable(true);
    showAll->setCheckable(true);
    noticeBar->hide();
    suggestion->hide();
    undo->hide();
    apply->setShortcut(QKeySequence::Save);
    add->setShortcut(QKeySequence::New);
    undo->setShortcut(QKeySequence::Undo);
    connect(noticeClose, &QPushButton::clicked, noticeBar, &QWidget::hide);
    connect(options, &QPushButton::clicked, optionsDialog, &QDialog::open);
    layOut();
    colourBars();
    setMinimumSize(560, 380);
    resize(fontMetrics().height() * 46, fontMetrics().height() * 40);
    list->setFocus();
}

void SettingsWindow::layOut() {
    auto* const whole = new QVBoxLayout(this);
    for (auto* const bar : {lockBar, noticeBar}) {
        auto* const row = new QHBoxLayout(bar);
        row->setContentsMargins(10, 4, 6, 4);
        row->addWidget(bar == lockBar ? lockText : noticeText, 1);
        row->addWidget(bar == lockBar ? lockButton : noticeClose);
        bar->setFrameShape(QFrame::StyledPanel);
        bar->setAutoFillBackground(true);
        whole->addWidget(bar);
    }
    noticeText->setWordWrap(true);
    lockBar->setAccessibleName(qString(translated("Changing the plan takes an administrator.")));
    noticeBar->setAccessibleName(qString(translated("Message")));
    whole->addWidget(next);

    auto* const heading = new QHBoxLayout;
    heading->addWidget(makeLabel(this, Weight::kHeading, qString(translated("Schedules"))), 1);
    for (QPushButton* one : {undo, remove, edit, add}) heading->addWidget(one);
    whole->addLayout(heading);

    layOutSuggestion();
    whole->addWidget(suggestion);
    whole->addWidget(list, 1);

    auto* const past = new QHBoxLayout;
    past->addWidget(happenedTitle, 1);
    past->addWidget(showAll);
    whole->addLayout(past);
    whole->addWidget(happened);

    auto* const foot = new QHBoxLayout;
    for (QLabel* one : {daemonLight, daemonText, agentLight, agentText}) foot->addWidget(one);
    foot->addStretch();
    for (QPushButton* one : {options, revert, apply}) foot->addWidget(one);
    whole->addLayout(foot);
}

void SettingsWindow::layOutSuggestion() {
    suggestion->setAccessibleName(qString(translated("A suggestion to start with")));
    auto* const text =
        makeLabel(suggestion, Weight::kText,
                  qString(translated("Nothing is stored yet. This is a suggestion to start with; nothing "
                                     "happens until you say so.")));
    text->setWordWrap(true);
    useThis->setDefault(true);
    auto* const row = new QHBoxLayout(suggestion);
    row->addWidget(text, 1);
    row->addWidget(makeOwn);
    row->addWidget(useThis);
}

/// A bar is yellow in any theme, and its text dark or light as the theme's is.
void SettingsWindow::colourBars() {
    const bool isDark = palette().color(QPalette::Window).lightness() < 128;
    QPalette colours = palette();
    colours.setColor(QPalette::Window, isDark ? QColor(84, 68, 24) : QColor(255, 243, 205));
    colours.setColor(QPalette::WindowText, isDark ? QColor(255, 236, 179) : QColor(77, 56, 0));
    for (QLabel* text : {lockText, noticeText}) text->setPalette(colours);
    for (QFrame* bar : {lockBar, noticeBar}) bar->setPalette(colours);
}

void SettingsWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) colourBars();
}

void SettingsWindow::notice(const QString& text) {
    noticeText->setText(text);
    noticeBar->setVisible(!text.isEmpty());
}

void SettingsWindow::suggest(bool suggests) {
    suggestion->setVisible(suggests);
    auto* const dim = suggests ? new QGraphicsOpacityEffect(list->viewport()) : nullptr;
    if (dim) dim->setOpacity(0.55);
    list->viewport()->setGraphicsEffect(dim);
}

void SettingsWindow::showHappened(const Array& outcomes) {
    constexpr std::size_t kAtAGlance = 3;
    showAll->setText(qString(showAll->isChecked() ? translated("Show the last") : translated("Show all")));
    showAll->setVisible(outcomes.size() > kAtAGlance);
    for (QWidget* const part : {static_cast<QWidget*>(happenedTitle), static_cast<QWidget*>(happened)})
        part->setHidden(outcomes.empty());
    happened->show(outcomes, showAll->isChecked() ? wire::scheduler::kMostOutcomes : kAtAGlance);
    sizeHappened();
}

/// The list of Schedules needs the place more.
void SettingsWindow::sizeHappened() {
    const int line = std::max(happened->sizeHintForRow(0), fontMetrics().height());
    const int most = showAll->isChecked() ? height() / line / 3 : height() < 30 * fontMetrics().height() ? 1 : 3;
    happened->setFixedHeight(std::clamp(happened->topLevelItemCount(), 1, std::max(most, 1)) * line +
                             2 * happened->frameWidth());
}

void SettingsWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    sizeHappened();
}

void SettingsWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (!std::exchange(_wasPainted, true)) QTimer::singleShot(0, this, [this] { firstPainted(); });
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!mayClose || mayClose());
}

}  // namespace quorel::qt
