#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace quorel::bench {

/// The same work, done plainly on Foundation's containers.
class FoundationSchedules {
public:
    explicit FoundationSchedules(int count);
    ~FoundationSchedules();
    double bytesPerSchedule() const;
    std::size_t handOver();
    void sort(const char* column);  ///< each time in the other direction
    void toggle(std::size_t first, std::size_t rows, const char* column);
    int count(const char* type);
    std::string summaries(std::size_t first, std::size_t rows);  ///< their times

private:
    struct Parts;
    std::unique_ptr<Parts> _parts;
};

/// A time in the user's short style, by one formatter for all, as the pane writes it.
std::string shortTimeByKeptFormatter(int hour, int minute);

}  // namespace quorel::bench
