#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

namespace corvane {

/// The superuser may read everything, so a test of permissions is somebody else as long as this lives.
class OrdinaryUser {
public:
    OrdinaryUser() : before_(geteuid()) {
        if (before_ == 0 && seteuid(65534) != 0) throw std::runtime_error("seteuid");
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() {
        if (seteuid(before_) != 0) ADD_FAILURE() << "the test's user did not come back";
    }

private:
    uid_t before_;
};

}  // namespace corvane
