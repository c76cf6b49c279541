#pragma once

#include <string>
#include <vector>

namespace quorel {

/// The standard output: aligned, on a terminal also coloured and wrapped at its width. Where somebody else's program
/// reads, a line stays a line.
class Page {
public:
    enum class Colour { kNone, kGood, kWarning, kFaint };

    Page();

    /// Too narrow for tables of many columns.
    bool isNarrow() const { return _isTerminal && _width < 72; }

    // Texts come from elsewhere as often as not: what would act on a terminal does not get there.

    /// Behind a dot, which says at a glance how things are.
    void headline(Colour colour, bool filled, const std::string& text) const;
    void line(const std::string& text) const;
    /// A sentence, which may go on below.
    void paragraph(const std::string& text) const;
    /// Names to the right, what they stand for beside them; below them where there is no room.
    void fields(const std::vector<std::pair<std::string, std::string>>& fields) const;
    /// Columns as wide as they need be; the last one takes the rest. A row of one cell alone stands below the row
    /// before it, from the second column on.
    void table(std::vector<std::vector<std::string>> rows) const;

private:
    /// The text in that colour, where there are colours.
    std::string coloured(Colour colour, const std::string& text) const;
    /// From that column on, where something of the line may stand already.
    void wrapped(const std::string& text, std::size_t column) const;

    bool _isTerminal;
    bool _hasColours;
    std::size_t _width = 80;
};

}  // namespace quorel
