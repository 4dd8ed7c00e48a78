// Ids need no separate definition here.
#pragma once
