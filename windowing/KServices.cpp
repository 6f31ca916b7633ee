#include "windowing/KServices.h"

KServices& kServices()
{
    static KServices services;
    return services;
}
