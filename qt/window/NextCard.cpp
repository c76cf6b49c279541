#include "qt/window/NextCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <algorithm>
#include <ctime>

#include "model/Upcoming.h"
#include "model/Wire.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/StatusText.h"
#include "words/WhenText.h"

namespace quorel::qt {

namespace {

namespace keys = wire::keys;

std::string occasionOf(const Value& one, std::string (*when)(Instant, Instant)) {
    return filled(translated("{1}, {2}"), {actionName(one), when(one[keys::kAt].integer(), std::time(nullptr))});
}

QString lineOf(const Value& one) {
    const std::string line = occasionOf(one, whenText), step = stepText(one);
    return qString(step.empty() ? line : filled(translated("{1} ({2})"), {line, step}));
}

/// What is under way or changed, and the first that follows what comes next.
QString followingText(const Array& upcoming, const Value* next) {
    QStringList lines;
    for (const Value& one : upcoming) {
        if (&one == next || (canBeSkipped(one) && !lines.empty())) continue;
        lines.append(keepsAwake(one) ? qString(filled(translated("{1}: {2}"), {actionName(one), stepText(one)}))
                                     : lineOf(one));
        if (lines.size() == 2) break;
    }
    if (lines.isEmpty()) return {};
    return qString(filled(translated("Then: {1}"), {stdString(lines.join(QStringLiteral(" · ")))}));
}

QStringList troublesOf(const Value& status) {
    QStringList lines;
    const auto add = [&](const std::string& what, const std::string& text) {
        lines.append(qString(what + " " + text));
    };
    const bool isTrial = status[keys::kActs].intValue() == 0;
    if (isTrial) lines.append(qString(translated("This is a trial: nothing of this computer is asked or touched.")));
    for (const auto& [what, text] : troubles(status.with(keys::kActs, true))) add(what, text);
    if (isTrial) return lines;  // which says why there are no alarms, too
    if (isMissing(status[keys::kWakeAlarm])) add(translated("Wake-up alarm:"), alarmText(status[keys::kWakeAlarm]));
    if (isMissing(status[keys::kStartupAlarm]))
        add(translated("Start-up alarm:"), alarmText(status[keys::kStartupAlarm]));
    return lines;
}

/// That the alarms are set, where they are.
QString alarmsText(const Value& status) {
    const auto isSet = [&](std::string_view key) {
        return status[key][keys::kAt].isPresent() && status[key][keys::kFault].isAbsent();
    };
    const bool wakes = isSet(keys::kWakeAlarm), starts = isSet(keys::kStartupAlarm);
    if (wakes && starts) return qString(translated("The alarms for waking up and for starting up are set."));
    if (wakes) return qString(translated("The alarm for waking up is set."));
    return starts ? qString(translated("The alarm for starting up is set.")) : QString();
}

}  // namespace

NextCard::NextCard(QWidget* parent, DaemonView& plan, std::function<void(const QString&)> failed)
    : Card(parent),
      _plan(plan),
      _failed(std::move(failed)),
      _title(makeLabel(this, Weight::kTitle)),
      _line(makeLabel(this, Weight::kSmall)),
      _troubles(makeLabel(this, Weight::kFault)),
      _letSleep{new QPushButton(qString(translated("Let it sleep")), this), {}},
      _unskip{new QPushButton(qString(translated("Undo skip")), this), {}},
      _postpone{new QPushButton(qString(translated("Postpone")), this), {}},
      _skip{new QPushButton(qString(translated("Skip")), this), {}},
      _pause(new QPushButton(this)) {
    setAccessibleName(qString(translated("Next")));
    auto* const texts = new QVBoxLayout;
    for (QLabel* label : {_title, _line, _troubles}) {
        label->setWordWrap(true);
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        texts->addWidget(label);
    }
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    for (const Choice* choice : {&_letSleep, &_unskip, &_postpone, &_skip}) buttons->addWidget(choice->button);
    buttons->addWidget(_pause);
    auto* const whole = new QHBoxLayout(this);
    whole->addLayout(texts, 1);
    whole->addLayout(buttons);
    connectButtons();
}

void NextCard::connectButtons() {
    auto* const lengths = new QMenu(_postpone.button);
    const auto length = [&](const char* text, Seconds seconds) {
        connect(lengths->addAction(qString(text)), &QAction::triggered, this,
                [this, seconds] { _plan.postpone(_postpone.token, tellFailure(), seconds); });
    };
    length(translated("15 minutes"), 15 * kMinute);
    length(translated("1 hour"), kHour);
    _postpone.button->setMenu(lengths);
    connect(_pause, &QPushButton::clicked, this, [this] {
        if (_pauseToken.empty())
            _plan.pause(tellFailure());
        else
            _plan.resume(_pauseToken, tellFailure());
    });
    connect(_letSleep.button, &QPushButton::clicked, this, [this] { _plan.skip(_letSleep.token, tellFailure()); });
    connect(_unskip.button, &QPushButton::clicked, this, [this] { _plan.unskip(_unskip.token, tellFailure()); });
    connect(_skip.button, &QPushButton::clicked, this, [this] { _plan.skip(_skip.token, tellFailure()); });
}

/// In a narrow window the buttons stand below.
void NextCard::resizeEvent(QResizeEvent* event) {
    Card::resizeEvent(event);
    const bool isNarrow = width() < fontMetrics().height() * 40;
    static_cast<QBoxLayout*>(layout())->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

void NextCard::show(const DaemonView::Told& told) {
    const Array& upcoming = told.upcoming.array();
    const auto first = [&](bool (*fits)(const Value&)) {
        const auto found = std::ranges::find_if(upcoming, fits);
        return found == upcoming.end() ? nullptr : &*found;
    };
    const Value* const next = first(canBeSkipped);
    offer(_letSleep, first(keepsAwake));
    offer(_unskip, first(isSkipped));
    offer(_postpone, next);
    offer(_skip, next);
    showPause(told);
    if (!told.isThere) {
        _title->setText(qString(translated("The daemon is not running.")));
        _line->setText(qString(translated("Nothing of this plan happens until it runs.")));
        _line->show();
        return showTroubles({});
    }
    _title->setText(next ? qString(filled(translated("Next: {1}"), {occasionOf(*next, comingText)}))
                         : qString(translated("Nothing is planned.")));
    QStringList lines;
    if (next) lines.append(qString(stepText(*next)));
    lines.append(followingText(upcoming, next));
    for (const Value& pause : told.pauses.array())
        lines.append(qString(translated("Pause:") + (" " + pauseText(pause, std::time(nullptr)))));
    lines.append(alarmsText(told.status));
    lines.removeAll(QString());
    _line->setText(lines.join(QLatin1Char('\n')));
    _line->setVisible(!lines.isEmpty());
    showTroubles(troublesOf(told.status));
}

void NextCard::showTroubles(const QStringList& troubles) {
    _troubles->setText(troubles.join(QLatin1Char('\n')));
    _troubles->setVisible(!troubles.isEmpty());
}

void NextCard::offer(Choice& choice, const Value* occurrence) {
    choice.token = occurrence ? (*occurrence)[keys::kToken].text() : std::string();
    choice.button->setVisible(!choice.token.empty());
    choice.button->setAccessibleDescription(occurrence ? lineOf(*occurrence) : QString());
}

DaemonView::Done NextCard::tellFailure() const {
    return
        [this](const BusError& error) { _failed(error ? qString(refusalText(error.name, error.message)) : QString()); };
}

/// One that has begun is ended; otherwise one begins.
void NextCard::showPause(const DaemonView::Told& told) {
    _pauseToken = pauseAround(told.pauses.array(), std::time(nullptr))[keys::kToken].text();
    const bool begins = _pauseToken.empty();
    _pause->setText(qString(begins ? translated("Pause") : translated("Resume")));
    _pause->setToolTip(begins ? qString(translated("Nothing happens until tomorrow morning.")) : QString());
    _pause->setVisible(told.isThere);
}

}  // namespace quorel::qt
