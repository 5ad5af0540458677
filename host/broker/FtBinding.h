// The front door is cmpihost/Host.h; this header is internal.
// Fills CMPI function tables from the host's functions whatever the header
// set's exact member types are. Header sets agree on the binary interface but
// differ in const (2.1 adds it to mutators), in getCharPtr's return type and
// in int/enum parameters; each slot gets a thunk with the member's own type
// that converts to the implementation's. The thunk is also the one place
// where no C++ exception may pass: it answers "failed" instead.
#ifndef CMPIHOST_BROKER_FTBINDING_H_
#define CMPIHOST_BROKER_FTBINDING_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

namespace cmpihost {

template <typename F>
struct FnTraits;
template <typename R, typename... A>
struct FnTraits<R (*)(A...)> {
  using Result = R;
  using Args = std::tuple<A...>;
};

template <typename To, typename From>
To AdaptValue(From from) {
  if constexpr (std::is_same_v<To, From>) {
    return from;
  } else if constexpr (std::is_pointer_v<To> && std::is_pointer_v<From>) {
    return const_cast<To>(from);
  } else {
    return static_cast<To>(from);
  }
}

// What a table entry answers when its implementation threw.
template <typename R>
R FailedAnswer() {
  if constexpr (std::is_same_v<R, CMPIStatus>) {
    CMPIStatus status;
    status.rc = CMPI_RC_ERR_FAILED;
    status.msg = nullptr;
    return status;
  } else if constexpr (std::is_same_v<R, CMPIData>) {
    CMPIData data{};
    data.type = CMPI_null;
    data.state = CMPI_nullValue;
    return data;
  } else if constexpr (!std::is_void_v<R>) {
    return R{};
  }
}

template <typename A>
void MarkFailed(A argument) {
  if constexpr (std::is_same_v<A, CMPIStatus*>) {
    if (argument != nullptr) {
      argument->rc = CMPI_RC_ERR_FAILED;
      argument->msg = nullptr;
    }
  }
}

template <auto Impl, typename Slot>
struct Thunk;

template <auto Impl, typename R, typename... A>
struct Thunk<Impl, R (*)(A...)> {
  static R Call(A... args) noexcept {
    try {
      return Invoke(std::index_sequence_for<A...>{}, args...);
    } catch (...) {
      (MarkFailed(args), ...);
      return FailedAnswer<R>();
    }
  }

 private:
  template <std::size_t... I>
  static R Invoke(std::index_sequence<I...>, A... args) {
    using ImplArgs = typename FnTraits<decltype(Impl)>::Args;
    static_assert(sizeof...(I) == std::tuple_size_v<ImplArgs>,
                  "entry and implementation differ in arity");
    if constexpr (std::is_void_v<R>) {
      Impl(AdaptValue<std::tuple_element_t<I, ImplArgs>>(args)...);
    } else {
      return AdaptValue<R>(Impl(AdaptValue<std::tuple_element_t<I, ImplArgs>>(args)...));
    }
  }
};

}  // namespace cmpihost

// The value of one table slot: `impl` adapted to the type of `FT::member`.
#define CMPIHOST_SLOT(FT, member, impl) (&::cmpihost::Thunk<impl, decltype(FT::member)>::Call)

#endif  // CMPIHOST_BROKER_FTBINDING_H_
