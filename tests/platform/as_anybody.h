// What a user without special rights meets.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

namespace kvtdruck {

/// Until it goes, this process has the rights of a user who owns nothing; where it is not root's, it keeps its own.
class AsAnybody {
  public:
    AsAnybody() { become(kNobody); }
    AsAnybody(const AsAnybody&) = delete;
    AsAnybody& operator=(const AsAnybody&) = delete;
    ~AsAnybody() { become(0); }

    static constexpr uid_t kNobody = 65534;

  private:
    void become(uid_t user) const {
        if (root_) {
            EXPECT_EQ(::setresuid(user, user, 0), 0);
        }
    }

    const bool root_ = ::geteuid() == 0;
};

} // namespace kvtdruck
