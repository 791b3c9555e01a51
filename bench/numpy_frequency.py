#!/usr/bin/python3
"""The frequency measurement's pipeline in vectorised numpy, the peer of
`zelvar-sim run` in bench_throughput: the same windows (a power of two at or
above the window length, advancing by the step of the overlap), the raw
spectrum of each by a batched real FFT, the strongest bin up to the maximum
frequency, and the phase difference between two Hann-windowed spectra formed
from the three bins around it. Reads a 16-bit PCM WAV in chunks, so memory
stays flat however long the file is.

    numpy_frequency.py FILE.wav [--window-length S] [--overlap PERCENT] [-o CSV]

Writes `channel,index,time_s,frequency_hz` rows (channels ch0, ch1, ...) when
asked to, and always one line on standard output: the values it made.
"""
import argparse
import math
import sys
import wave

import numpy as np

TWO_PI = 6.283185307179586
MINUS_PI = -3.141592653589793
# Windows transformed in one call: enough to amortise numpy's overhead,
# few enough to keep the batch in a few tens of MiB.
BATCH_WINDOWS = 64


def window_size_of(rate, length):
    u = int(rate * length)
    size = 1 if u <= 1 else 1 << (u - 1).bit_length()
    return min(size, 1 << 20)


def window_step_of(rate, length, overlap):
    return int(math.ceil(((1.0 - overlap * 0.01) * length) * rate))


def estimate(windows, rate, max_frequency):
    """Frequencies of a batch of windows (rows), as the plug-in estimates them."""
    n = windows.shape[1]
    half = np.fft.rfft(windows, axis=1)
    # One bin past n/2, the conjugate of the one below it, for k = n/2.
    spectrum = np.concatenate([half, np.conj(half[:, n // 2 - 1:n // 2])], axis=1)
    df = rate / float(n)
    r = max_frequency / df
    limit = min(n, int(math.floor(r + 0.5)) + 1)
    last = min(limit, n // 2 + 1)
    rows = np.arange(windows.shape[0])
    if last > 1:
        power = half[:, 1:last].real ** 2 + half[:, 1:last].imag ** 2
        k = np.argmax(power, axis=1) + 1
        # Nothing above zero keeps bin 1, as a strict comparison from 0.0 does.
        k = np.where(power[rows, k - 1] > 0.0, k, 1)
    else:
        k = np.ones(windows.shape[0], dtype=np.int64)
    omega = TWO_PI / n
    a = 0.5 * np.exp(-1j * omega)
    b = 0.5 * np.exp(1j * omega)
    below, at, above = spectrum[rows, k - 1], spectrum[rows, k], spectrum[rows, k + 1]
    y = at - b * above - a * below
    z = y * (0.5 * np.exp(1j * (omega * k)))
    h = 0.5 * at - 0.25 * above - 0.25 * below
    d = np.arctan2(z.imag, z.real) - np.arctan2(h.imag, h.real)
    d = np.where(MINUS_PI > d, d + TWO_PI, d)
    return (d / TWO_PI) * rate


def channel_frames(path, chunk_frames):
    """Chunks of the file as float64 arrays of shape (frames, channels)."""
    with wave.open(path, "rb") as recording:
        if recording.getsampwidth() != 2:
            raise SystemExit(f"{path}: only 16-bit PCM is read here")
        channels = recording.getnchannels()
        while True:
            raw = recording.readframes(chunk_frames)
            if not raw:
                return
            yield np.frombuffer(raw, dtype="<i2").reshape(-1, channels).astype(np.float64)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("file")
    parser.add_argument("--window-length", type=float, default=0.2)
    parser.add_argument("--overlap", type=float, default=50.0)
    parser.add_argument("-o", "--output")
    options = parser.parse_args()

    with wave.open(options.file, "rb") as recording:
        rate = float(recording.getframerate())
        channels = recording.getnchannels()
    size = window_size_of(rate, options.window_length)
    step = window_step_of(rate, options.window_length, options.overlap)
    min_frequency, max_frequency = 5.0 / options.window_length, rate * 0.5

    results = [[] for _ in range(channels)]
    pending = np.empty((0, channels))
    for chunk in channel_frames(options.file, BATCH_WINDOWS * step):
        pending = np.concatenate([pending, chunk])
        count = (pending.shape[0] - size) // step + 1 if pending.shape[0] >= size else 0
        if count == 0:
            continue
        starts = np.arange(count) * step
        for c in range(channels):
            view = np.lib.stride_tricks.sliding_window_view(pending[:, c], size)[starts]
            f = estimate(view, rate, max_frequency)
            f[(min_frequency > f) | (f > max_frequency)] = np.nan
            results[c].append(f)
        pending = pending[count * step:]

    values = [np.concatenate(r) if r else np.empty(0) for r in results]
    if options.output:
        with open(options.output, "w") as out:
            out.write("channel,index,time_s,frequency_hz\n")
            for c, series in enumerate(values):
                for j, f in enumerate(series, start=1):
                    out.write(f"ch{c},{j},{repr(j * step / rate)},{'nan' if f != f else repr(float(f))}\n")
    print(f"{sum(len(v) for v in values)} values", file=sys.stdout)


if __name__ == "__main__":
    main()
