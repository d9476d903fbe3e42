// Nothing: a target with precompiled headers needs a source file.
