// How far an operation has come, and how to stop it.
#pragma once

#include <functional>

namespace seedforest {

/// As long as one lives, the functions of its thread that can take long tell how far they have
/// come:
///
///   const seedforest::WithProgress progress([&](double done) { return !window.isClosed(); });
///
/// `report` is called now and then, after every 2^16 pixels or so, with the fraction that is done
/// of the present pass; an operation has one pass or several. Where it returns false the operation
/// stops and throws Cancelled. Of several that live the last one made counts, and it must end
/// first.
class WithProgress {
public:
  using Report = std::function<bool(double fraction)>;

  explicit WithProgress(Report report);
  ~WithProgress();
  WithProgress(const WithProgress &) = delete;
  WithProgress &operator=(const WithProgress &) = delete;

  /// That of the thread, or none.
  static const Report *current();

private:
  Report report_;
  const WithProgress *outer_;
};

} // namespace seedforest
