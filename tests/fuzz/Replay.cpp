// Runs a fuzzer's kept inputs once each, where no fuzzing engine is at hand.
//
//   replay-NAME FILE|FOLDER...
//
// An input that breaks something ends the program there; its name has been printed before. No input at all is an
// error: what is told to hold the inputs does not.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize);

namespace {

using Paths = std::vector<std::filesystem::path>;

Paths InputsAt(const std::filesystem::path& place)
{
    if (!std::filesystem::is_directory(place)) {
        return {place};
    }
    Paths inputs;
    for (const auto& entry : std::filesystem::directory_iterator(place)) {
        inputs.push_back(entry.path());
    }
    std::ranges::sort(inputs);
    return inputs;
}

bool Run(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        fprintf(stderr, "cannot read %s\n", path.c_str());
        return false;
    }
    printf("%s\n", path.c_str());
    fflush(stdout);
    // A block of just this size, so that a read behind the input's end is seen.
    const auto pInput = std::make_unique<uint8_t[]>(bytes.size());
    std::ranges::copy(bytes, pInput.get());
    LLVMFuzzerTestOneInput(pInput.get(), bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    size_t nRun = 0;
    for (int n = 1; n < argc; ++n) {
        const Paths inputs = InputsAt(argv[n]);
        if (inputs.empty()) {
            fprintf(stderr, "there is no input in %s\n", argv[n]);
            return 1;
        }
        for (const auto& path : inputs) {
            if (!Run(path)) {
                return 1;
            }
            ++nRun;
        }
    }
    printf("%zu inputs\n", nRun);
    return nRun > 0 ? 0 : 1;
}
