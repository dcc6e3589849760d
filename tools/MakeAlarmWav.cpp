// Writes the program's default alarm sound: one second of a two-tone chime, 16-bit mono
// PCM at 22050 Hz, in a RIFF/WAVE file. Run by the build; takes the output path.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <vector>

namespace {

void Put16(std::vector<char>& out, std::uint16_t v)
{
    out.push_back(char(v & 0xFF));
    out.push_back(char(v >> 8));
}

void Put32(std::vector<char>& out, std::uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(char((v >> (8 * i)) & 0xFF));
}

void PutTag(std::vector<char>& out, const char* tag)
{
    out.insert(out.end(), tag, tag + 4);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: MakeAlarmWav OUTPUT.wav\n");
        return 2;
    }
    constexpr std::uint32_t rate = 22050;
    constexpr double seconds = 1.0;
    constexpr auto count = std::uint32_t(rate * seconds);

    // Four 0.25 s notes, high-low-high-low, each with a soft attack and decay.
    std::vector<std::int16_t> samples(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const double t = double(i) / rate;
        const int note = int(t / 0.25);
        const double local = t - note * 0.25;
        const double frequency = note % 2 == 0 ? 1046.5 : 784.0;
        const double envelope = std::min(1.0, local / 0.01) * std::exp(-local * 9.0);
        const double value = std::sin(2 * std::numbers::pi * frequency * t) * envelope * 0.6;
        samples[i] = std::int16_t(std::lround(value * 32767));
    }

    std::vector<char> out;
    const std::uint32_t dataBytes = count * 2;
    PutTag(out, "RIFF");
    Put32(out, 36 + dataBytes);
    PutTag(out, "WAVE");
    PutTag(out, "fmt ");
    Put32(out, 16);
    Put16(out, 1); // PCM
    Put16(out, 1); // mono
    Put32(out, rate);
    Put32(out, rate * 2);
    Put16(out, 2);
    Put16(out, 16);
    PutTag(out, "data");
    Put32(out, dataBytes);
    for (std::int16_t s : samples)
        Put16(out, std::uint16_t(s));

    std::ofstream file(argv[1], std::ios::binary);
    file.write(out.data(), std::streamsize(out.size()));
    return file ? 0 : 1;
}
