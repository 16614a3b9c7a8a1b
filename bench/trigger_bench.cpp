// Trigger rendered through RenderAudio in envelope mode with a note per block, and with CV triggering
// from a sine input, against the envelope alone and a plain envelope doing the same notes and segments.
#include <algorithm>
#include <cmath>
#include <memory>

#include "BenchSupport.h"
#include "modules/sequencing/Envelope.h"

namespace {

void SetRate(benchmark::State& state, uint32_t block) {
    BR::Bench::CountFrames(state, block);
}

// Short segments, so that each block passes through several stages.
void ShortEnvelope(BR::HostDriver& driver) {
    driver.SetParameterByName("Output Mode", 2.0f);
    driver.SetParameterByName("Env 1 Time A1", 0.0005f);
    driver.SetParameterByName("Env 1 Level A1", 0.7f);
    driver.SetParameterByName("Env 1 Time A2", 0.001f);
    driver.SetParameterByName("Env 1 Time A3", 0.001f);
    driver.SetParameterByName("Env 1 Time R1", 0.001f);
    driver.SetParameterByName("Env 1 Time R2", 0.002f);
    driver.SetParameterByName("Env 1 Type A2", 0.0f);
}

void BM_TriggerEnvelope(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("trigger", block);
    ShortEnvelope(*rig.driver);
    const uint8_t on[3] = {0x90, 60, 100}, off[3] = {0x80, 60, 0};
    const BR::TimedMidi midi[2] = {{0, 3, on}, {block / 2, 3, off}};
    for (auto _ : state) {
        rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), block, midi, 2);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

void BM_TriggerCVGate(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::Bench::ModuleRig rig("trigger", block);
    ShortEnvelope(*rig.driver);
    rig.driver->SetParameterByName("CV Trigger Enable", 1.0f);
    rig.driver->SetParameterByName("CV Trigger Threshold", 0.25f);
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// The envelope generator alone, one note-on and note-off per block, mapped as the module maps it.
void BM_EnvelopeAlone(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.0005f;
    p.levelA1 = 0.7f;
    p.time[BR::kSegA2] = p.time[BR::kSegA3] = p.time[BR::kSegR1] = 0.001f;
    p.time[BR::kSegR2] = 0.002f;
    p.type[BR::kSegA2] = 0;
    BR::Envelope env;
    BR::EnvDisplayValues display;
    std::vector<float> out(block);
    for (auto _ : state) {
        BR::envBlockUpdate(env, p, 48000.0f, display);
        BR::envNoteOn(env, 0.8f, p, 48000.0f);
        BR::renderEnvelope(env, out.data(), block / 2);
        BR::envNoteOff(env, p, 48000.0f);
        BR::renderEnvelope(env, out.data() + block / 2, block - block / 2);
        for (uint32_t i = 0; i < block; ++i)
            out[i] = out[i] * 2.0f - 1.0f;
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

// What the segment cache costs where nothing repeats: the peer benchmark's envelope (A 10 ms to 1, D
// 50 ms to 0.5, R 100 ms, exponential) at a 10 Hz gate, with a velocity that changes at every note,
// so that every segment starts from a new level; rendered with a cache (range 1, every segment a
// miss that fills an entry) and without (range 0). Blocks of 64.
void BM_EnvelopeNewLevels(benchmark::State& state) {
    const bool cached = state.range(0) != 0;
    BR::EnvParameters p;
    p.time[BR::kSegA1] = 0.01f;
    p.levelA1 = 1.0f;
    p.time[BR::kSegA2] = 0.05f;
    p.levelA2 = 0.5f;
    p.time[BR::kSegA3] = 0.0f;
    p.time[BR::kSegR1] = 0.1f;
    p.velocityDepth = 1.0f;
    BR::Envelope env;
    auto cache = std::make_unique<BR::EnvSegmentCache>();
    std::vector<float> out(64);
    uint32_t frame = 0, note = 0;
    for (auto _ : state) {
        if (frame % 4800 == 0) {
            BR::envNoteOn(env, 0.5f + 0.001f * float(note++ % 500), p, 48000.0f);
        } else if (frame % 4800 == 2400) {
            BR::envNoteOff(env, p, 48000.0f);
        }
        BR::renderEnvelope(env, out.data(), 64, cached ? cache.get() : nullptr);
        frame += 64;
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    if (cached && cache->copied != 0) state.SkipWithError("a segment repeated");
    SetRate(state, 64);
}

// The plain twin of BM_TriggerEnvelope: the same envelope (exponential A1, parabolic A2, exponential
// A3, sustain, exponential R1 and R2, at the lengths ShortEnvelope sets) with a note-on at each block's
// start and a note-off half way, written as plainly as the job allows. An exponential segment that
// starts from a level only known at the event (A1 and R1) gets its coefficient then, one log and one
// exp; the segments that always start from the same level are worked out once. The recurrence runs
// per sample and a segment ends on its target, as the output must; then the mapping to the range.
struct PlainEnvelope {
    struct Segment {
        bool exponential = true;
        float c = 0.0f, add = 0.0f, target = 0.0f;  // exponential: level = c * level + add
        bool falling = false;
        float increment = 0.0f, second = 0.0f;  // parabolic: first and second difference
        uint32_t length = 0;
    };
    static constexpr float kRate = 48000.0f;
    static constexpr float kBend = 0.5f * 4.8f - 5.0f;  // shape 0.5

    static void Exponential(Segment& s, float seconds, float from, float to) {
        float samples = seconds * kRate;
        if (!(samples >= 1.0f)) samples = 1.0f;
        s.exponential = true;
        s.length = uint32_t(samples);
        const float e = std::exp(kBend);
        const double c = std::exp(-std::log((std::fabs(double(to - from)) + e) / e) / double(samples));
        s.falling = from > to;
        const double aim = s.falling ? double(to) - e : double(to) + e;
        s.add = float(aim * (1.0 - c));
        s.c = float(c);
        s.target = to;
    }
    static void Parabolic(Segment& s, float seconds, float from, float to) {
        const float samples = seconds * kRate, r = 1.0f / samples, d = to - from;
        s.exponential = false;
        s.length = uint32_t(samples);
        s.increment = (0.5f * d * r + 0.5f * d) * r;
        s.second = 2.0f * 0.5f * d * r * r;
    }

    PlainEnvelope() {
        Parabolic(a2, 0.001f, 0.7f, 1.0f);
        Exponential(a3, 0.001f, 1.0f, 0.5f);
        Exponential(r2, 0.002f, 0.0f, 0.0f);
    }
    void NoteOn() {
        float t1 = 0.0005f;
        const float ratio = std::fabs((level - 0.7f) / 0.7f);
        if (ratio < 1.0f) t1 *= ratio;
        Exponential(a1, t1, level, 0.7f);
        stage = 0;
        a2Now = a2;
        a3Now = a3;
    }
    void NoteOff() {
        Exponential(r1, 0.001f, level, 0.0f);
        stage = 4;
        r2Now = r2;
    }
    Segment* Current() {
        switch (stage) {
            case 0:
                return &a1;
            case 1:
                return &a2Now;
            case 2:
                return &a3Now;
            case 4:
                return &r1;
            case 5:
                return &r2Now;
            default:
                return nullptr;  // sustain (3) and finished (6) hold
        }
    }
    void Render(float* y, uint32_t n) {
        float l = level;
        while (n != 0) {
            Segment* s = Current();
            if (!s) {
                // Sustain and the end hold the level where the last segment left it (an exponential
                // one a hair beyond its target): the notes of this bench always come first.
                for (uint32_t i = 0; i < n; ++i)
                    y[i] = l * span + base;
                break;
            }
            const uint32_t m = std::min(n, s->length);
            uint32_t done = m;
            if (!s->exponential) {
                float inc = s->increment;
                for (uint32_t i = 0; i < m; ++i) {
                    l += inc;
                    inc += s->second;
                    y[i] = l * span + base;
                }
                s->increment = inc;
                s->length -= m;
            } else {
                const float c = s->c, add = s->add, target = s->target;
                bool ended = false;
                for (uint32_t i = 0; i < m; ++i) {
                    l = c * l + add;
                    if (s->falling ? !(l > target) : l >= target) {
                        y[i] = target * span + base;
                        done = i + 1;
                        ended = true;
                        break;
                    }
                    y[i] = l * span + base;
                }
                s->length = ended ? 0 : s->length - done;
            }
            if (s->length == 0) stage = stage == 2 ? 3 : stage + 1;
            y += done;
            n -= done;
        }
        level = l;
    }

    Segment a1, a2, a3, r1, r2, a2Now, a3Now, r2Now;
    int stage = 6;
    float level = 0.0f;
    float span = 1.0f, base = 0.0f;  // "Max Voltage" - "Min Voltage" and "Min Voltage" at their defaults
};

void BM_PlainLoop(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> out(block);
    PlainEnvelope envelope;
    for (auto _ : state) {
        envelope.NoteOn();
        envelope.Render(out.data(), block / 2);
        envelope.NoteOff();
        envelope.Render(out.data() + block / 2, block - block / 2);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}

BENCHMARK(BM_TriggerEnvelope)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_TriggerCVGate)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_EnvelopeAlone)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_PlainLoop)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(BM_EnvelopeNewLevels)->Arg(0)->Arg(1);

}  // namespace

// The plain twin of BM_TriggerCVGate: the same input scanned for crossings of 0.25, a note-on or a
// note-off of the plain envelope at each, the envelope rendered between them.
struct PlainCVGate {
    void Render(const float* x, float* y, uint32_t n) {
        // At a block's start a held sustain or a finished envelope takes its exact level.
        if (envelope.stage == 3) envelope.level = 0.5f;
        if (envelope.stage == 6) envelope.level = 0.0f;
        const float rise = 0.25f, fall = std::nextafter(0.25f, 1.0f);
        uint32_t pos = 0;
        while (pos < n) {
            uint32_t edge = pos;
            if (open) {
                while (edge < n && x[edge] >= fall)
                    ++edge;
            } else {
                while (edge < n && !(x[edge] > rise))
                    ++edge;
            }
            if (edge < n) {
                open = !open;
                if (open) {
                    envelope.NoteOn();
                } else {
                    envelope.NoteOff();
                }
            }
            if (edge > pos) envelope.Render(y + pos, edge - pos);
            pos = edge;
        }
    }
    PlainEnvelope envelope;
    bool open = false;
};

void BM_PlainCVGate(benchmark::State& state) {
    const uint32_t block = uint32_t(state.range(0));
    std::vector<float> in(block), out(block);
    for (uint32_t i = 0; i < block; ++i)
        in[i] = 0.5f * std::sin(0.01f * float(i));  // the rig's input
    PlainCVGate gate;
    for (auto _ : state) {
        gate.Render(in.data(), out.data(), block);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRate(state, block);
}
BENCHMARK(BM_PlainCVGate)->Arg(32)->Arg(256)->Arg(1024);

// The plain twin must do the module's job: its output is checked against the module's, sample by
// sample, over 200 blocks of each size before the timing starts.
void CheckTwin() {
    for (uint32_t block : {32u, 256u, 1024u}) {
        BR::Bench::ModuleRig rig("trigger", block);
        ShortEnvelope(*rig.driver);
        const uint8_t on[3] = {0x90, 60, 100}, off[3] = {0x80, 60, 0};
        const BR::TimedMidi midi[2] = {{0, 3, on}, {block / 2, 3, off}};
        rig.Render();  // a block without notes, in which the module takes its settings
        PlainEnvelope envelope;
        std::vector<float> plain(block);
        double worst = 0.0;
        for (int k = 0; k < 200; ++k) {
            rig.driver->Process(rig.inPointers.data(), rig.outPointers.data(), block, midi, 2);
            envelope.NoteOn();
            envelope.Render(plain.data(), block / 2);
            envelope.NoteOff();
            envelope.Render(plain.data() + block / 2, block - block / 2);
            for (uint32_t i = 0; i < block; ++i)
                worst = std::max(worst, std::fabs(double(plain[i]) - double(rig.out[0][i])));
        }
        std::printf("plain twin against the module at block %u: largest difference %g\n", block, worst);

        BR::Bench::ModuleRig cv("trigger", block);
        ShortEnvelope(*cv.driver);
        cv.driver->SetParameterByName("CV Trigger Enable", 1.0f);
        cv.driver->SetParameterByName("CV Trigger Threshold", 0.25f);
        PlainCVGate gate;
        worst = 0.0;
        for (int k = 0; k < 200; ++k) {
            cv.Render();
            gate.Render(cv.in[0].data(), plain.data(), block);
            // The module takes its settings in its first block; compare from the second.
            for (uint32_t i = 0; i < block && k > 0; ++i)
                worst = std::max(worst, std::fabs(double(plain[i]) - double(cv.out[0][i])));
        }
        std::printf("plain CV twin against the module at block %u: largest difference %g\n", block, worst);
    }
}

int main(int argc, char** argv) {
    CheckTwin();
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_TriggerEnvelope/32", "BM_PlainLoop/32"},
                                     {"BM_TriggerEnvelope/256", "BM_PlainLoop/256"},
                                     {"BM_TriggerEnvelope/1024", "BM_PlainLoop/1024"},
                                     {"BM_TriggerCVGate/32", "BM_PlainCVGate/32"},
                                     {"BM_TriggerCVGate/256", "BM_PlainCVGate/256"},
                                     {"BM_TriggerCVGate/1024", "BM_PlainCVGate/1024"},
                                     {"BM_EnvelopeAlone/256", "BM_PlainLoop/256"},
                                     {"BM_EnvelopeAlone/1024", "BM_PlainLoop/1024"},
                                     {"BM_EnvelopeNewLevels/1", "BM_EnvelopeNewLevels/0"}});
}
