#!/usr/bin/env python3
"""Writes the two-channel recording that the README's example runs on.

rig.wav, 48 kHz, 16 bit, 12 s: channel 0 holds a tone at 440 Hz that glides
up to 880 Hz between 4 s and 8 s; channel 1 a tone at 1 kHz that drops to
60 Hz between 5 s and 7 s, below the example's lowest frequency, so that its
plot shows a break there. Python's standard library only.
"""
import math
import struct
import sys
import wave

RATE = 48000
SECONDS = 12


def glide_phase():
    phase = 0.0
    for i in range(RATE * SECONDS):
        t = i / RATE
        frequency = 440.0 if t < 4 else 880.0 if t >= 8 else 440.0 + 110.0 * (t - 4)
        phase += 2 * math.pi * frequency / RATE
        yield phase


def main(path):
    with wave.open(path, "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(RATE)
        frames = bytearray()
        for i, phase in enumerate(glide_phase()):
            t = i / RATE
            drop = 5 <= t < 7
            second = math.sin(2 * math.pi * (60.0 if drop else 1000.0) * t)
            frames += struct.pack("<hh", round(12000 * math.sin(phase)), round(9000 * second))
        out.writeframes(bytes(frames))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "rig.wav")
