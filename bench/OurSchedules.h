#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace quorel::bench {

/// The configurator, on a host that does nothing.
class OurSchedules {
public:
    explicit OurSchedules(int count);
    ~OurSchedules();
    double bytesPerSchedule() const;
    std::size_t handOver();         ///< how many are kept
    void sort(const char* column);  ///< each time in the other direction
    void toggle(std::size_t first, std::size_t rows, const char* column);
    int count(const char* type);
    std::string summaries(std::size_t first, std::size_t rows);  ///< their times

private:
    struct Parts;
    std::unique_ptr<Parts> _parts;
};

}  // namespace quorel::bench
