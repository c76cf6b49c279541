#include "qt/window/NextCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <ctime>

#include "model/Wire.h"
#include "qt/host/Forecast.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel::qt {

namespace {

namespace keys = wire::keys;

/// Whether there is something to be said to it: it is not left out already, and has not begun.
bool isAhead(const Value& one) {
    const std::string_view step = one[keys::kStep].text();
    return step != wire::step::kSkipped && step != wire::step::kRunning && step != wire::step::kActing &&
           !one[keys::kToken].text().empty();
}

std::string lineOf(const Value& one) {
    const std::string line =
        filled(translated("{1} {2}"), {actionName(one), nearText(one[keys::kAt].integer(), std::time(nullptr))});
    const std::string step = stepText(one);
    return step.empty() ? line : filled(translated("{1} ({2})"), {line, step});
}

}  // namespace

NextCard::NextCard(QWidget* parent, Plan& plan, std::function<void(const QString&)> failed)
    : Card(parent),
      _plan(plan),
      _failed(std::move(failed)),
      _title(makeLabel(this, Weight::kTitle)),
      _line(makeLabel(this, Weight::kSmall)),
      _postpone(new QPushButton(qString(translated("Postpone 15 minutes")), this)),
      _skip(new QPushButton(qString(translated("Skip")), this)) {
    for (QLabel* label : {_title, _line}) {
        label->setWordWrap(true);
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    auto* const texts = new QVBoxLayout;
    texts->addWidget(_title);
    texts->addWidget(_line);
    auto* const whole = new QHBoxLayout(this);
    whole->addLayout(texts, 1);
    whole->addWidget(_postpone);
    whole->addWidget(_skip);
    connect(_postpone, &QPushButton::clicked, this, [this] { change(wire::scheduler::kPostpone); });
    connect(_skip, &QPushButton::clicked, this, [this] { change(wire::scheduler::kSkip); });
}

void NextCard::show() {
    const Array& upcoming = _plan.upcoming();
    const auto next = std::ranges::find_if(upcoming, isAhead);
    const bool isThere = next != upcoming.end();
    _token = isThere ? (*next)[keys::kToken].text() : std::string();
    for (QPushButton* button : {_postpone, _skip}) {
        button->setVisible(isThere);
        button->setAccessibleDescription(isThere ? qString(lineOf(*next)) : QString());
    }
    if (!_plan.isThere()) {
        _title->setText(qString(translated("The daemon is not running.")));
        _line->setText(qString(translated("Nothing of this plan happens until it runs.")));
        return;
    }
    if (!isThere) _title->setText(qString(translated("Nothing is planned.")));
    if (isThere) _title->setText(qString(filled(translated("Next: {1}"), {lineOf(*next)})));
    QStringList lines;
    for (const Value& one : upcoming) {
        const bool changed = !isAhead(one);
        if (!isThere || &one != &*next) {
            if (changed || lines.empty()) lines.append(qString(lineOf(one)));
        }
        if (lines.size() == 2) break;
    }
    _line->setText(lines.isEmpty()
                       ? QString()
                       : qString(filled(translated("Then: {1}"), {stdString(lines.join(QStringLiteral(" · ")))})));
}

void NextCard::change(const char* method) {
    if (_token.empty()) return;
    _plan.change(method, _token, [this](const std::string& error, const std::string& text) {
        _failed(error.empty() ? QString() : qString(refusalText(error, text)));
    });
}

}  // namespace quorel::qt
