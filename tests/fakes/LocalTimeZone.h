#pragma once
#include <cstdlib>
#include <ctime>
#include <string>

namespace quillmar {

/// The time zone of the test, as TZ writes it ("TST-3" is three hours east), until it ends.
class LocalTimeZone {
public:
    explicit LocalTimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) before_ = before;
        set(zone);
    }
    LocalTimeZone(const LocalTimeZone&) = delete;
    LocalTimeZone& operator=(const LocalTimeZone&) = delete;
    ~LocalTimeZone() {
        before_.empty() ? ::unsetenv("TZ") : ::setenv("TZ", before_.c_str(), 1);
        ::tzset();
    }
    void set(const char* zone) { ::setenv("TZ", zone, 1); }

private:
    std::string before_;
};

}  // namespace quillmar
