# Parts that need more than a compiler: where that is lacking they are left out, and a line says so.

# Says which part is left out because what it needs was not found, the Debian packages that hold it, and the part's
# switch.
function(q_mur_leave_out part needs packages switch)
  message(STATUS "Without ${part}: ${needs} not found (packages: ${packages}; switch: ${switch})")
endfunction()
