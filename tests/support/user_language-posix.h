#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace corvane::testing {

/// The language of the user (LC_ALL), for the life of the object.
class UserLanguage {
public:
    explicit UserLanguage(const char* language) {
        if (const char* before = std::getenv("LC_ALL")) before_ = before;
        changeTo(language);
    }
    UserLanguage(const UserLanguage&) = delete;
    UserLanguage& operator=(const UserLanguage&) = delete;
    ~UserLanguage() {
        if (before_)
            changeTo(before_->c_str());
        else
            unsetenv("LC_ALL");
    }

    static void changeTo(const char* language) { setenv("LC_ALL", language, 1); }

private:
    std::optional<std::string> before_;
};

}  // namespace corvane::testing
