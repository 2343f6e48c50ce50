// Nothing of its own: its precompiled headers serve all test programs.
