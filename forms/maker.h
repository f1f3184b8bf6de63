// The maker of the control as its about box names it: one place for the
// resource script and the code. Fictional, like the publisher the control
// starts with (control/publisher.h): the maker publishes as Ostrel Edizioni
// and shares its numbers.
#pragma once

#define MAKER_NAME "Ostrel"
#define MAKER_PRODUCT "Ostrel Brevantis ActiveX Control"
#define MAKER_WEB_SITE "http://www.ostrel-edizioni.example/brevantis"
#define MAKER_EMAIL "brevantis@ostrel-edizioni.example"
#define MAKER_PHONE "+39 0123 456789"
#define MAKER_FAX "+39 0123 456790"
