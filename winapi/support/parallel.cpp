#include "winapi/support/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace winapi {

void inParallel(std::size_t parts, const std::function<void(std::size_t part)>& work) {
  std::vector<std::exception_ptr> errors(parts);
  std::atomic<std::size_t> next{0};
  auto worker = [&] {
    for (std::size_t part; (part = next++) < parts;) {
      try {
        work(part);
      } catch (...) {
        errors[part] = std::current_exception();
      }
    }
  };
  std::size_t threads = std::min<std::size_t>(std::thread::hardware_concurrency(), parts);
  std::vector<std::thread> others;
  for (std::size_t i = 1; i < threads; ++i) others.emplace_back(worker);
  worker();
  for (std::thread& thread : others) thread.join();
  for (const std::exception_ptr& error : errors)
    if (error) std::rethrow_exception(error);
}

void inParallelSlices(
    std::size_t size, std::size_t perSlice,
    const std::function<void(std::size_t slice, std::size_t first, std::size_t end)>& work) {
  inParallel(slicesOf(size, perSlice), [&](std::size_t slice) {
    std::size_t first = slice * perSlice;
    work(slice, first, std::min(size, first + perSlice));
  });
}

}  // namespace winapi
