/// \file
/// raised_flag: marks that something is going on.
#pragma once

namespace kel {
inline namespace v1 {
namespace detail {

/// Raises a flag and lowers it again at the end of the scope, also after a throw.
class raised_flag {
public:
    explicit raised_flag(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    raised_flag(const raised_flag&) = delete;
    raised_flag& operator=(const raised_flag&) = delete;
    ~raised_flag() { flag_ = false; }

private:
    bool& flag_;
};

} // namespace detail
} // namespace v1
} // namespace kel
