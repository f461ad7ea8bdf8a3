#include "Shortages.h"

const std::map<std::string, Shortage>& shortages()
{
    static const std::map<std::string, Shortage> none;
    return none;
}
