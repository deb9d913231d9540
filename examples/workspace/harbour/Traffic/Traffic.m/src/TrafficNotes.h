// Lies beside the sources, where no include is looked for.
enum TrafficNote { TrafficNoteNone, TrafficNoteFog };
