#pragma once

#include <memory>

namespace platform {

// Wall-clock time as seconds since 1970, the form every date of the system takes.
// Tests install a clock of their own.
class WallClock {
public:
    virtual ~WallClock() = default;
    virtual double now() const = 0;
};

class SystemWallClock final : public WallClock {
public:
    double now() const override;
};

// Stands still until moved.
class FixedWallClock final : public WallClock {
public:
    explicit FixedWallClock(double secondsSince1970) : now_(secondsSince1970) {}
    double now() const override { return now_; }
    void set(double secondsSince1970) { now_ = secondsSince1970; }
    void advance(double seconds) { now_ += seconds; }

private:
    double now_;
};

// The present instant through the current clock.
double now();
// Replaces the clock and returns the previous one.
std::shared_ptr<WallClock> setWallClock(std::shared_ptr<WallClock> clock);

} // namespace platform
