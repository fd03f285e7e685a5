/*
 * args.h - what each argument of an export is, read from the export list:
 * the kind from its type (an element array, an object, an object handed back,
 * an integer, a scalar), and its name from the parameter text.  The sweep and
 * the differential fuzzer both stand on it.
 */
#ifndef OMN_TESTS_ROBUSTNESS_ARGS_H
#define OMN_TESTS_ROBUSTNESS_ARGS_H

#include <ctype.h>
#include <stddef.h>

#include <string>
#include <type_traits>
#include <vector>

#include "omns.h"

namespace omn {
namespace robust {

/* What an argument is, from its type (and, for integers, its name). */
enum class Kind { Data, Object, ObjectOut, Raw, Length, Integer, Scalar };

template <typename U>
constexpr bool isElement()
{
    return std::is_arithmetic_v<U> || std::is_same_v<U, Omn16sc> || std::is_same_v<U, Omn32sc> ||
           std::is_same_v<U, Omn32fc> || std::is_same_v<U, Omn64fc>;
}

template <typename A>
constexpr Kind kindOf()
{
    if constexpr (std::is_pointer_v<A>) {
        using U = std::remove_cv_t<std::remove_pointer_t<A>>;
        if constexpr (std::is_pointer_v<U>)
            return Kind::ObjectOut;
        else if constexpr (std::is_void_v<U>)
            return Kind::Raw;
        else if constexpr (isElement<U>())
            return Kind::Data;
        else
            return Kind::Object;
    } else if constexpr (std::is_same_v<A, int>) {
        return Kind::Integer;
    } else {
        return Kind::Scalar;
    }
}

template <typename A>
constexpr size_t elemSize()
{
    if constexpr (std::is_pointer_v<A>) {
        using U = std::remove_cv_t<std::remove_pointer_t<A>>;
        if constexpr (std::is_void_v<U> || std::is_pointer_v<U>)
            return 1;
        else
            return sizeof(U);
    } else {
        return 0;
    }
}

/* The names of a parameter list as the export list writes it:
   "(const Omn64f* pSrc, Omn64f* pDst, int len)" -> pSrc, pDst, len. */
inline std::vector<std::string> paramNames(const char* params)
{
    std::vector<std::string> names;
    std::string text(params);
    if (!text.empty() && text.front() == '(')
        text.erase(0, 1);
    if (!text.empty() && text.back() == ')')
        text.pop_back();
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(',', start);
        if (end == std::string::npos)
            end = text.size();
        std::string part = text.substr(start, end - start);
        size_t e = part.find_last_not_of(" \t");
        if (e != std::string::npos) {
            size_t b = e;
            while (b > 0 && (isalnum(static_cast<unsigned char>(part[b - 1])) || part[b - 1] == '_'))
                --b;
            std::string id = part.substr(b, e - b + 1);
            if (id != "void")
                names.push_back(id);
        }
        start = end + 1;
    }
    return names;
}

} // namespace robust
} // namespace omn

#endif /* OMN_TESTS_ROBUSTNESS_ARGS_H */
