#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace platform {

/// A move-only callable without arguments or result, as queues and timers store it.
///
/// A callable of up to 56 bytes that moves without throwing is kept inside; a larger one costs one
/// allocation, whoever stores the block.
class Block {
 public:
  Block() = default;
  Block(std::nullptr_t) {}
  template <class F>
  requires(!std::same_as<std::remove_cvref_t<F>, Block> && std::invocable<std::decay_t<F>&>)
      Block(F&& function) {
    using Callable = std::decay_t<F>;
    if constexpr (fits<Callable>) {
      ::new (static_cast<void*>(storage_)) Callable(std::forward<F>(function));
      operations_ = &inPlace<Callable>;
    } else {
      ::new (static_cast<void*>(storage_)) Callable*(new Callable(std::forward<F>(function)));
      operations_ = &onHeap<Callable>;
    }
  }
  Block(Block&& other) noexcept : operations_(std::exchange(other.operations_, nullptr)) {
    if (operations_) operations_->relocate(other.storage_, storage_);
  }
  Block& operator=(Block&& other) noexcept {
    if (this == &other) return *this;
    reset();
    operations_ = std::exchange(other.operations_, nullptr);
    if (operations_) operations_->relocate(other.storage_, storage_);
    return *this;
  }
  ~Block() { reset(); }

  explicit operator bool() const { return operations_ != nullptr; }

  /// Runs the callable, which must be there.
  void operator()() { operations_->run(storage_); }

 private:
  static constexpr std::size_t capacity = 56;

  struct Operations {
    void (*run)(void* storage);
    void (*relocate)(void* from, void* to) noexcept;
    void (*destroy)(void* storage) noexcept;
  };

  template <class F>
  static constexpr bool fits =
      sizeof(F) <= capacity &&
      alignof(F) <= alignof(void*) && std::is_nothrow_move_constructible_v<F>;

  template <class F>
  static F& at(void* storage) {
    return *std::launder(static_cast<F*>(storage));
  }

  template <class F>
  static constexpr Operations inPlace = {
      [](void* storage) { static_cast<void>(at<F>(storage)()); },
      [](void* from, void* to) noexcept {
        ::new (to) F(std::move(at<F>(from)));
        at<F>(from).~F();
      },
      [](void* storage) noexcept { at<F>(storage).~F(); },
  };

  template <class F>
  static constexpr Operations onHeap = {
      [](void* storage) { static_cast<void>((*at<F*>(storage))()); },
      [](void* from, void* to) noexcept { ::new (to) F*(at<F*>(from)); },
      [](void* storage) noexcept { delete at<F*>(storage); },
  };

  void reset() {
    if (operations_) std::exchange(operations_, nullptr)->destroy(storage_);
  }

  const Operations* operations_ = nullptr;
  alignas(void*) std::byte storage_[capacity];
};

}  // namespace platform
