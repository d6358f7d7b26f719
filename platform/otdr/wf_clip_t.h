#pragma once

/// The horizontal window for which a trace is to be decimated.
struct wf_clip_t // NOLINT(readability-identifier-naming): a given name
{
    double start = 0.0; ///< m
    double end = 0.0; ///< m
    int points = 0; ///< output points wanted
};
