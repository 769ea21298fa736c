#include "aftersale/NoteComposer.h"
