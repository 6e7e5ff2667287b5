home-phone
