// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Callables with a state, passed to operations that take plain functions without a context.
#pragma once

#include <type_traits>
#include <utility>

#pragma GCC visibility push(default)

namespace seedforest::detail {

/// While an object lives, call() calls the callable in this thread, through a thread-local pointer
/// that exists for each type of callable. The callable takes all of the function's arguments, or
/// all but the first. Objects may nest.
template <class Callable, class Function>
class Through;

template <class Callable, class First, class... Rest>
class Through<Callable, int (*)(First, Rest...)> {
public:
  explicit Through(Callable &callable) : outer_(std::exchange(current, &callable)) {}
  ~Through() { current = outer_; }
  Through(const Through &) = delete;
  Through &operator=(const Through &) = delete;

  static int call(First first, Rest... rest) {
    if constexpr (std::is_invocable_r_v<int, Callable &, First, Rest...>)
      return (*current)(first, rest...);
    else
      return (*current)(rest...);
  }

private:
  static inline constinit thread_local Callable *current = nullptr;
  Callable *outer_;
};

/// Calls use(function): the callable itself where it converts to a function pointer, else a
/// function that calls it.
template <class Function, class Callable, class Use>
decltype(auto) withFunction(Callable &callable, Use use) {
  if constexpr (std::is_convertible_v<Callable &, Function>) {
    return use(static_cast<Function>(callable));
  } else {
    const Through<Callable, Function> through(callable);
    return use(static_cast<Function>(&Through<Callable, Function>::call));
  }
}

} // namespace seedforest::detail

#pragma GCC visibility pop
