// Loading a skin against GLib's reader of key files on the same text, in alternating batches, so that the machine's
// moods meet both and neither cleans up after the other's use of the heap.

#include "Comparison.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Text/Text.h"

#include <benchmark/benchmark.h>
#include <glib.h>

#include <algorithm>
#include <random>
#include <string>

namespace Ostrel {

namespace {

constexpr int Batch = 10;
constexpr int Pairs = 100;
constexpr int Lines = 2000;

std::string number(int value) {
    return std::to_string(value);
}

constexpr std::string_view Head = R"([Rainmeter]
Update=1000
BackgroundMode=2
SolidColor=0,0,0,1

[Metadata]
Name=System
Author=Someone
Information=Shows what the machine does.
License=MIT
Version=1.2

[StyleText]
FontFace=#FontName#
FontSize=11
FontColor=#Colour3#
StringStyle=Bold
AntiAlias=1

[Variables]
;Theme=dark
Width=220
Row=22
FontName=Segoe UI
Top=#Row#
)";

/// A measure and the meter that shows it, as people write them. The line that is a comment to us is a key to GLib,
/// which would stop at it otherwise.
constexpr std::string_view Pair = R"(
;Row{n}=hidden
[MeasureValue{n}]
Measure=Calc
Formula=(MeasureCPU * {n} + [MeasureValue0]) / 100
MinValue=0
MaxValue=100
UpdateDivider=2
IfCondition=MeasureValue{n} > 90
IfTrueAction=[!SetOption MeterText{n} FontColor "#Colour1#"][!UpdateMeter MeterText{n}]

[MeterText{n}]
Meter=String
MeterStyle=StyleText
MeasureName=MeasureValue{n}
X=10
Y=(#Top# * {n})
W=#Width#
H=#Row#
)";

/// 2,000 lines, none of which either reader refuses.
std::string skinText() {
    std::string text(Head);
    for (int i = 0; i < 30; ++i)
        text += replacingOccurrences("Colour{n}=20,120,240,{n}\n", "{n}", number(i));
    for (int i = 0; i < Pairs; ++i)
        text += replacingOccurrences(Pair, "{n}", number(i));
    for (auto lines = std::count(text.begin(), text.end(), '\n'); lines < Lines; ++lines)
        text += replacingOccurrences("Image{n}=#CURRENTPATH#image{n}.png\n", "{n}", number(static_cast<int>(lines)));
    return text;
}

void check(bool isTrue, benchmark::State& state, const char* message) {
    if (!isTrue)
        state.SkipWithError(message);
}

void load(FileProvider& files, benchmark::State& state) {
    DiagnosticCollector diagnostics;
    const auto config = SkinLoader(files, diagnostics).load("/skins/System/System.ini");
    check(config && diagnostics.diagnostics().empty() && config->measures.size() == Pairs
            && config->meters.size() == Pairs && *config->meters[9].allOptions.find("Y"_key) == "(22 * 9)",
        state, "the skin was not loaded as written");
}

void readKeyFile(const std::string& text, benchmark::State& state) {
    GKeyFile* file = g_key_file_new();
    const bool isRead = g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr) != 0;
    char* value = g_key_file_get_value(file, "MeterText9", "Y", nullptr);
    check(isRead && value && std::string(value) == "(#Top# * 9)", state, "the key file was not read as written");
    g_free(value);
    g_key_file_free(file);
}

void loadAgainstKeyFile(benchmark::State& state) {
    const auto text = skinText();
    check(std::count(text.begin(), text.end(), '\n') == Lines, state, "the skin has not 2,000 lines");
    InMemoryFileProvider files;
    files.addFile("/skins/System/System.ini", text);
    compare(
        state, [&] { return secondsOf([&] { load(files, state); }); },
        [&] { return secondsOf([&] { readKeyFile(text, state); }); }, Batch);
}
BENCHMARK(loadAgainstKeyFile)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// A hundred reads of one file, the price of a file that includes itself.
void loadIncludingItself(benchmark::State& state) {
    InMemoryFileProvider files;
    files.addFile("/skins/System/System.ini", skinText() + "@Include=System.ini\n");
    for (auto _ : state) {
        DiagnosticCollector diagnostics;
        const auto config = SkinLoader(files, diagnostics).load("/skins/System/System.ini");
        check(config && diagnostics.errors().size() == 1, state, "one error was expected");
    }
}
BENCHMARK(loadIncludingItself)->Unit(benchmark::kMillisecond);

/// Every value doubles fifty times over, and meets the limit of a text's size instead.
void expandExponentially(benchmark::State& state) {
    std::string text = "[Variables]\n";
    for (int i = 0; i < 50; ++i) {
        const auto doubled = replacingOccurrences("V{i}=#V{n}##V{n}#\n", "{n}", number(i + 1));
        text += replacingOccurrences(doubled, "{i}", number(i));
    }
    InMemoryFileProvider files;
    files.addFile("/s.ini", text + "V50=x\n");
    for (auto _ : state) {
        DiagnosticCollector diagnostics;
        const auto config = SkinLoader(files, diagnostics).load("/s.ini");
        check(config && !diagnostics.warnings().empty(), state, "a warning was expected");
    }
}
BENCHMARK(expandExponentially)->Unit(benchmark::kMillisecond);

/// Small changes that keep the taste of the text: its own characters and pieces, inserted, replaced and taken away.
std::string mutated(std::string text, std::mt19937& random) {
    constexpr std::string_view Letters = "#[]*\xFF=xABCDEFabc@!\n";
    constexpr std::size_t HeadSize = 12;
    constexpr std::size_t MaxSize = 2000;
    for (auto changes = 1 + random() % 6; changes > 0 && text.size() > 2 * HeadSize; --changes) {
        const auto at = HeadSize + random() % (text.size() - HeadSize);
        const auto from = HeadSize + random() % (text.size() - HeadSize);
        const char letter = Letters[random() % Letters.size()];
        switch (random() % 4) {
        case 0:
            text[at] = letter;
            break;
        case 1:
            text.insert(at, 1, letter);
            break;
        case 2:
            text.erase(at, 1 + random() % 3);
            break;
        default:
            text.insert(at, text.substr(from, 1 + random() % 40));
        }
    }
    text.resize(std::min(text.size(), MaxSize));
    return text;
}

/// What a text costs that is written against the limits: the worst of 10,000 mutations, each of the first text or of
/// the worst so far.
void expandTheWorstOfManyMutations(benchmark::State& state) {
    const std::string six(6, '\xFF');
    const std::string fifteen(15, '\xFF');
    const auto first = "[Variables]\nA=x#B#\nB=[" + six + "[#[#A]]##" + fifteen
        + "#C]\nC=#D##E#\nD=[#F\nF=]\na=#A#\nb=[#B]\nc=[![#A]]##\n@=[*#@#*]#@#\n";
    std::mt19937 random(1);
    for (auto _ : state) {
        auto worst = first;
        double worstSeconds = 0;
        for (int i = 0; i < 10'000; ++i) {
            const auto text = i == 0 ? first : mutated(random() % 4 == 0 ? first : worst, random);
            InMemoryFileProvider files;
            files.addFile("/s.ini", decodeText(text));
            DiagnosticCollector diagnostics;
            const double seconds = secondsOf([&] { SkinLoader(files, diagnostics).load("/s.ini"); });
            check(i > 0 || diagnostics.warnings().size() == 1, state, "a warning was expected");
            if (seconds > worstSeconds) {
                worstSeconds = seconds;
                worst = text;
            }
        }
        state.counters["worst_s"] = worstSeconds;
    }
}
BENCHMARK(expandTheWorstOfManyMutations)->Unit(benchmark::kSecond)->Iterations(1);

} // namespace

} // namespace Ostrel
