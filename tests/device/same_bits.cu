// Compares every formula of src/physics and every body of src/kernels, bit for bit, between the host
// and a graphics card, on ten million random states. Exit status: 0 equal, 1 different, 77 without a card.
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "device/every_body.hpp"
#include "device/every_formula.hpp"

namespace {

using device_check::Results;

constexpr std::uint64_t states = 10'000'000;
constexpr std::uint64_t states_at_a_time = 50'000;
constexpr int no_card = 77;

/// The formulas on one state, and then the bodies.
enum class Part { formulas, bodies };

QM_HD inline Results compute(Part part, std::uint64_t number) {
  return part == Part::formulas ? device_check::every_formula(number)
                                : device_check::every_body(number);
}

__global__ void compute_all(Part part, std::uint64_t first, Results* results) {
  const std::uint64_t i = static_cast<std::uint64_t>(blockIdx.x) * blockDim.x + threadIdx.x;
  if (i < states_at_a_time) results[i] = compute(part, first + i);
}

void check(cudaError_t status) {
  if (status == cudaSuccess) return;
  std::fprintf(stderr, "same_bits: %s\n", cudaGetErrorString(status));
  std::exit(1);
}

bool has_card() {
  int cards = 0;
  return cudaGetDeviceCount(&cards) == cudaSuccess && cards > 0;
}

/// Equal bits. The bits of what is not a number are the processor's own affair.
bool same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

/// Number of results of a state that differ; says which ones.
int differences(std::uint64_t number, const Results& host, const Results& device) {
  if (host.count != device.count || host.count > Results::capacity) {
    std::printf("state %llu: %d results on the host, %d on the device, at most %d\n",
                static_cast<unsigned long long>(number), host.count, device.count,
                Results::capacity);
    return 1;
  }
  int different = 0;
  for (int k = 0; k < host.count; ++k) {
    if (same(host.values[k], device.values[k])) continue;
    std::printf("state %llu, result %d: host %a, device %a\n",
                static_cast<unsigned long long>(number), k, host.values[k], device.values[k]);
    ++different;
  }
  return different;
}

}  // namespace

int main() {
  if (!has_card()) {
    std::puts("same_bits: no card, nothing compared");
    return no_card;
  }
  Results* on_device = nullptr;
  check(cudaMalloc(&on_device, states_at_a_time * sizeof(Results)));
  std::vector<Results> results(states_at_a_time);
  long long compared = 0;
  int different = 0;
  for (const Part part : {Part::formulas, Part::bodies}) {
    for (std::uint64_t first = 0; first < states && different < 20; first += states_at_a_time) {
      constexpr unsigned threads = 128;
      compute_all<<<(states_at_a_time + threads - 1) / threads, threads>>>(part, first, on_device);
      check(cudaGetLastError());
      check(cudaMemcpy(results.data(), on_device, results.size() * sizeof(Results),
                       cudaMemcpyDeviceToHost));
      for (std::uint64_t i = 0; i < states_at_a_time; ++i) {
        const Results host = compute(part, first + i);
        different += differences(first + i, host, results[i]);
        compared += host.count;
      }
    }
  }
  check(cudaFree(on_device));
  std::printf("same_bits: %lld results compared, %d differ\n", compared, different);
  return different == 0 ? 0 : 1;
}
