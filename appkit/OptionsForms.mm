#import "appkit/OptionsForms.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "appkit/OptionControls.h"
#include "appkit/Resources.h"
#include "appkit/Strings.h"
#import "appkit/VXOptionsContainer.h"
#include "model/Dictionary.h"

namespace quorel::appkit {

namespace {

constexpr CGFloat kWidth = 440;
constexpr CGFloat kLineHeight = 34;
constexpr CGFloat kMargin = 6;  // around what is higher than a line
constexpr CGFloat kGap = 6;
constexpr CGFloat kRoomForWords = 1.15;

NSBundle *pane() {
    return [NSBundle bundleForClass:[VXOptionsContainer class]];
}

/// A sentence of small print, wrapped to the width.
NSTextField *sentenceOf(NSString *text, CGFloat width) {
    NSTextField *label = labelOf(text);
    [label setFont:[NSFont systemFontOfSize:[NSFont smallSystemFontSize]]];
    [label sizeToFit];
    const NSSize size = [label frame].size;
    // A line is broken between words: it may have room left.
    const CGFloat lines = size.width <= width ? 1 : std::ceil(size.width * kRoomForWords / width);
    [[label cell] setWraps:YES];
    [label setFrameSize:NSMakeSize(width, lines * size.height)];
    return label;
}

/// Views from left to right, each centred; the last control takes what is left where it is wide.
struct Line {
    NSTextField *label = nil;
    std::vector<NSView *> views;
    NSTextField *help = nil;
    bool isWide = false;

    CGFloat height() const {
        CGFloat height = kLineHeight - kMargin;
        for (NSView *view : views) height = std::max(height, NSHeight([view frame]));
        return height + kMargin;
    }
    CGFloat heightWithHelp() const { return height() + (help ? NSHeight([help frame]) + kMargin : 0); }
};

class Form : public OptionsForm {
public:
    Form(const ActionDescription &action, std::string_view language) : _action(action) {
        if (!action.isSound()) showFault();
        for (std::size_t i = 0; i < action.options.size(); ++i) {
            const Option &option = action.options[i];
            const std::string &help = inLanguage(option.help, language);  // shown, but on another one's line
            NSString *toolTip =
                nsString(_action.goesOn(i) && !help.empty() ? help : inLanguage(option.label, language));
            _controls.push_back(controlOf(option, language, toolTip, [this] { enable(); }));
        }
        if (action.isSound()) lay(linesIn(language));
    }

    std::shared_ptr<quorel::View> view() override { return wrapped<View>(_view.get()); }

    void show(const Value &parameters) override {
        for (std::size_t i = 0; i < _controls.size(); ++i) _controls[i].show(parameters[_action.options[i].key]);
        enable();
    }

    Value shown() override {
        Dictionary values;
        for (std::size_t i = 0; i < _controls.size(); ++i) values.set(_action.options[i].key, _controls[i].shown());
        return values;
    }

private:
    void showFault() {
        const DescriptionFault &fault = _action.faults.front();
        const std::string where = fault.key + (fault.key.empty() ? "" : ": ") + std::string(fault.code);
        NSString *text = [NSString stringWithFormat:VXLocalized(@"Description fautive : %@", pane()), nsString(where)];
        lay({Line{.views = {sentenceOf(text, kWidth)}}});
    }

    std::vector<Line> linesIn(std::string_view language) const {
        std::vector<Line> lines;
        CGFloat labelWidth = 0;
        for (std::size_t i = 0; i < _controls.size(); ++i) {
            const Option &option = _action.options[i];
            if (!_action.goesOn(i)) {
                lines.emplace_back();
                lines.back().isWide = option.isWide();
                NSString *help = nsString(inLanguage(option.help, language));
                if ([help length]) lines.back().help = sentenceOf(help, kWidth);
                if (option.kind != OptionKind::kFlag) {
                    NSString *label = nsString(inLanguage(option.label, language));
                    lines.back().label = labelOf([NSString stringWithFormat:VXLocalized(@"%@ :", pane()), label]);
                    labelWidth = std::max(labelWidth, NSWidth([lines.back().label frame]));
                }
            }
            lines.back().views.push_back(_controls[i].view->get());
            if (option.unit.size() > 0)
                lines.back().views.push_back(labelOf(nsString(inLanguage(option.unit, language))));
        }
        for (const Line &line : lines)
            if (line.label) [line.label setFrameSize:NSMakeSize(labelWidth, NSHeight([line.label frame]))];
        return lines;
    }

    /// From the bottom upwards, but added in the order in which they are read: Tab goes that way.
    void lay(const std::vector<Line> &lines) {
        CGFloat top = 0;
        for (const Line &line : lines) top += line.heightWithHelp();
        [_view.get() setFrame:NSMakeRect(0, 0, kWidth, top)];
        for (const Line &line : lines) {
            const CGFloat bottom = top - line.height();
            CGFloat x = line.label ? place(line.label, 0, bottom, line.height()) : 0;
            for (NSView *view : line.views) {
                if (line.isWide) [view setFrameSize:NSMakeSize(kWidth - x, NSHeight([view frame]))];
                x = place(view, x, bottom, line.height());
            }
            top -= line.heightWithHelp();
            if (line.help) place(line.help, 0, top, NSHeight([line.help frame]) + kMargin);
        }
    }

    /// Where the next one begins.
    CGFloat place(NSView *view, CGFloat x, CGFloat bottom, CGFloat height) {
        [view setFrameOrigin:NSMakePoint(x, bottom + (height - NSHeight([view frame])) / 2)];
        [_view.get() addSubview:view];
        return NSMaxX([view frame]) + kGap;
    }

    /// What depends on a flag is there while it is ticked.
    void enable() {
        std::map<std::string, bool> isOn;
        for (std::size_t i = 0; i < _controls.size(); ++i) {
            const Option &option = _action.options[i];
            const bool enabled = option.dependsOn.empty() || isOn[option.dependsOn];
            _controls[i].setEnabled(enabled);
            if (option.kind == OptionKind::kFlag) isOn[option.key] = enabled && _controls[i].shown().intValue() != 0;
        }
    }

    const ActionDescription _action;
    const Retained<NSView> _view{[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]};
    std::vector<OptionControl> _controls;
};

}  // namespace

std::unique_ptr<OptionsForm> OptionsForms::formOf(const ActionDescription &action) {
    return std::make_unique<Form>(action, language());
}

std::string OptionsForms::language() const {
    return stdString(VXLocalized(@"Langue", pane()));
}

}  // namespace quorel::appkit
