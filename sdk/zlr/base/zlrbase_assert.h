// The assertion channel: kit code reports a broken invariant here and goes on.
//
// A report passes expression, message (or null), source path and line to the
// installed handler. The default handler answers 1, "go on"; a handler that
// answers 0 stops the process at a breakpoint trap. So an assertion changes
// nothing by itself unless somebody installs a stricter handler.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zlr {

using AssertionHandler = int (*)(const char* expression, const char* message, const char* path,
                                 int line);

// Installs `handler` (null restores the default) and answers the former one.
AssertionHandler setAssertionHandler(AssertionHandler handler);

// Reports a failed check. With a printf-style `format` the message is
// formatted into 256 characters; without one the handler gets null.
void reportAssertion(const char* expression, const char* path, int line,
                     const char* format = nullptr, ...) __attribute__((format(printf, 4, 5)));

// Reports "left op right (left_value op right_value)".
template <typename L, typename R>
void reportComparison(const char* left, const char* op, const char* right, const L& left_value,
                      const R& right_value, const char* path, int line)
{
    std::ostringstream text;
    text << left << op << right << " (" << left_value << op << right_value << ")";
    reportAssertion(text.str().c_str(), path, line);
}

namespace detail {
// Integers of mixed signedness compare by value, so that a check can be
// written against a plain 0 whatever the type on the left.
template <typename L, typename R>
constexpr bool equalValues(const L& left, const R& right)
{
    if constexpr (std::is_integral_v<L> && std::is_integral_v<R> && !std::is_same_v<L, bool> &&
                  !std::is_same_v<R, bool>) {
        return std::cmp_equal(left, right);
    } else {
        return left == right;
    }
}

template <typename L, typename R>
constexpr bool lessOrEqualValues(const L& left, const R& right)
{
    if constexpr (std::is_integral_v<L> && std::is_integral_v<R> && !std::is_same_v<L, bool> &&
                  !std::is_same_v<R, bool>) {
        return std::cmp_less_equal(left, right);
    } else {
        return left <= right;
    }
}

// "dir/zlrfw_channels.cpp" becomes "zlrfw_channels": the path that reports carry.
constexpr std::string_view sourceStem(std::string_view file)
{
    const auto slash = file.find_last_of('/');
    if (slash != std::string_view::npos) {
        file.remove_prefix(slash + 1);
    }
    const auto dot = file.find_last_of('.');
    if (dot != std::string_view::npos) {
        file.remove_suffix(file.size() - dot);
    }
    return file;
}

template <std::size_t N>
struct StemText {
    char text[N]{};
    constexpr explicit StemText(std::string_view stem)
    {
        for (std::size_t i = 0; i < stem.size() && i + 1 < N; ++i) {
            text[i] = stem[i];
        }
    }
};
} // namespace detail

} // namespace zlr

#define ZLR_SOURCE_PATH                                                                          \
    ([]() -> const char* {                                                                       \
        static constexpr ::zlr::detail::StemText<sizeof(__FILE__)> stem{                         \
            ::zlr::detail::sourceStem(__FILE__)};                                                \
        return stem.text;                                                                        \
    }())

// Reports `expr` as written when it is false.
#define ZLR_ASSERT(expr)                                                                         \
    do {                                                                                         \
        if (!(expr)) {                                                                           \
            ::zlr::reportAssertion(#expr, ZLR_SOURCE_PATH, __LINE__);                            \
        }                                                                                        \
    } while (false)

// Reports `expr` with a formatted message when it is false.
#define ZLR_ASSERT_MSG(expr, ...)                                                                \
    do {                                                                                         \
        if (!(expr)) {                                                                           \
            ::zlr::reportAssertion(#expr, ZLR_SOURCE_PATH, __LINE__, __VA_ARGS__);               \
        }                                                                                        \
    } while (false)

// Equality check; the report names the violated condition: "a != b (1 != 2)".
#define ZLR_ASSERT_EQ(left, right)                                                               \
    do {                                                                                         \
        const auto& zlr_left_value = (left);                                                     \
        const auto& zlr_right_value = (right);                                                   \
        if (!::zlr::detail::equalValues(zlr_left_value, zlr_right_value)) {                                              \
            ::zlr::reportComparison(#left, " != ", #right, zlr_left_value, zlr_right_value,      \
                                    ZLR_SOURCE_PATH, __LINE__);                                  \
        }                                                                                        \
    } while (false)

// Ordering check; the report names the required condition: "a <= b (3 <= 2)".
#define ZLR_ASSERT_LE(left, right)                                                               \
    do {                                                                                         \
        const auto& zlr_left_value = (left);                                                     \
        const auto& zlr_right_value = (right);                                                   \
        if (!::zlr::detail::lessOrEqualValues(zlr_left_value, zlr_right_value)) {                                              \
            ::zlr::reportComparison(#left, " <= ", #right, zlr_left_value, zlr_right_value,      \
                                    ZLR_SOURCE_PATH, __LINE__);                                  \
        }                                                                                        \
    } while (false)
