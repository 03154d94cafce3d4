// The integers that have a width: what numerals and overflow predicates are about. Characters and
// `bool` are none of them; `signed char` and `unsigned char` are the ones of 8 bits.
#pragma once

#include <concepts>
#include <type_traits>

template <class T, class... Types>
concept OneOf = (std::same_as<T, Types> || ...);

template <class T>
concept SignedIntegerType = OneOf<T, signed char, short, int, long, long long>;

template <class T>
concept UnsignedIntegerType =
    OneOf<T, unsigned char, unsigned short, unsigned int, unsigned long, unsigned long long>;

template <class T>
concept IntegerType = SignedIntegerType<T> || UnsignedIntegerType<T>;
