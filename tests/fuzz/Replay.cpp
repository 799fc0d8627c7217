// Runs a fuzzer's kept inputs once each, where no fuzzing engine is at hand.
//
//   replay-NAME FOLDER...
//
// An input that breaks something ends the program there; its name has been printed before. No input at all is an
// error: what is told to hold the inputs does not.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize);

int main(int argc, char** argv)
{
    size_t nRun = 0;
    for (int n = 1; n < argc; ++n) {
        const size_t nBefore = nRun;
        for (const auto& entry : std::filesystem::directory_iterator(argv[n])) {
            printf("%s\n", entry.path().c_str());
            fflush(stdout);
            // A block of just this size, so that a read behind the input's end is seen.
            const size_t nSize = entry.file_size();
            const auto pInput = std::make_unique<uint8_t[]>(nSize);
            std::ifstream file(entry.path(), std::ios::binary);
            if (!file.read(reinterpret_cast<char*>(pInput.get()), static_cast<std::streamsize>(nSize))) {
                fprintf(stderr, "it cannot be read\n");
                return 1;
            }
            LLVMFuzzerTestOneInput(pInput.get(), nSize);
            ++nRun;
        }
        if (nRun == nBefore) {
            fprintf(stderr, "there is no input in %s\n", argv[n]);
            return 1;
        }
    }
    printf("%zu inputs\n", nRun);
    return nRun > 0 ? 0 : 1;
}
