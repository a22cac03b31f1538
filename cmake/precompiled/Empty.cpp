// Each target that holds precompiled headers needs one source, and this one is enough.
