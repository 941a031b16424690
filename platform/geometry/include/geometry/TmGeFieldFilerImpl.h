#pragma once

// The members of TmGeFieldFiler, for the one source of a host that instantiates it:
//   template class TmGeFieldFiler<MyFiler>;

#include <geometry/TmGeFieldFiler.h>

#define TMGE_FIELD_DEFINITIONS(Name, ReadParameter, WriteParameter)                                 \
    template <class Host>                                                                          \
    Tmk::ErrorStatus TmGeFieldFiler<Host>::read##Name(ReadParameter value)                         \
    {                                                                                              \
        return static_cast<Host&>(*this).template readField<TmGeField::e##Name>(value);            \
    }                                                                                              \
    template <class Host>                                                                          \
    Tmk::ErrorStatus TmGeFieldFiler<Host>::write##Name(WriteParameter value)                       \
    {                                                                                              \
        return static_cast<Host&>(*this).template writeField<TmGeField::e##Name>(value);           \
    }
TMGE_FILER_FIELDS(TMGE_FIELD_DEFINITIONS)
#undef TMGE_FIELD_DEFINITIONS
